#pragma once

#include <charconv>
#include <string>

namespace zellab {

/// The shortest text that reads back as the number: "7", "0.5".
inline std::string shortNumber(double value) {
    char text[32];
    char* const end = std::to_chars(text, text + sizeof text, value).ptr;
    return std::string(text, end);
}

}  // namespace zellab
