#pragma once

#include <charconv>
#include <string>

namespace zelgimp {

/// The shortest text that reads back as the same number, with a point whatever the locale is.
inline std::string textOfNumber(double number) {
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, number);
    return {text, end.ptr};
}

/// 0 for what is no number.
inline double numberOfText(const std::string& text) {
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

inline bool truthOfText(const std::string& text) {
    return text == "true";
}
inline const char* textOfTruth(bool truth) {
    return truth ? "true" : "false";
}

}  // namespace zelgimp
