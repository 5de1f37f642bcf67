#include "libzel/parameterInfos.h"

#include <cctype>
#include <cmath>

#include "frame/shortNumber.h"
#include "libzel/call.h"

namespace zel {

namespace {

/// "blurLevel" as "Blur level".
std::string titleOf(const std::string& name) {
    std::string title;
    for (const char c : name) {
        const auto letter = static_cast<unsigned char>(c);
        if (title.empty()) {
            title += static_cast<char>(std::toupper(letter));
        } else if (std::isupper(letter)) {
            title += ' ';
            title += static_cast<char>(std::tolower(letter));
        } else {
            title += c;
        }
    }
    return title;
}

/// A hundredth of the range, as a power of ten; whole numbers step by one.
double stepOf(const Parameter& parameter) {
    if (parameter.kind == ZEL_WHOLE_NUMBER) return 1;
    if (parameter.kind != ZEL_NUMBER) return 0;
    const double range = parameter.maximum - parameter.minimum;
    return range > 0 ? std::pow(10.0, std::floor(std::log10(range)) - 2) : 0.01;
}

/// A host's number as text. Whole ones have no exponent, which whole-number parameters would not take.
std::string textOf(double number) {
    constexpr double kMostExact = 1e15;
    if (std::trunc(number) == number && std::abs(number) < kMostExact)
        return std::to_string(static_cast<long long>(number));
    return zellab::shortNumber(number);
}

}  // namespace

ParameterInfos::ParameterInfos(const std::vector<Parameter>& parameters) {
    for (const Parameter& parameter : parameters) {
        auto& choices = m_choices.emplace_back();
        for (const std::string& choice : parameter.choices) choices.push_back(choice.c_str());
        choices.push_back(nullptr);
        m_infos.push_back({parameter.name.c_str(), m_titles.emplace_back(titleOf(parameter.name)).c_str(),
                           parameter.help.c_str(), parameter.unit.c_str(), parameter.kind, parameter.minimum,
                           parameter.maximum, stepOf(parameter),
                           parameter.mustBeGiven() ? nullptr : parameter.defaultValue.c_str(), choices.data(),
                           parameter.advanced});
        m_pointers.push_back(&m_infos.back());
    }
}

std::map<std::string, std::string> textsOf(const zel_value* values, std::size_t count) {
    std::map<std::string, std::string> texts;
    if (count > 0) given(values, "values");
    for (std::size_t i = 0; i < count; ++i) {
        const std::string name = &given(values[i].name, "a value's name");
        if (!values[i].text && !std::isfinite(values[i].number))
            throw Failure(name + " must be a number", ZEL_BAD_VALUE);
        texts[name] = values[i].text ? values[i].text : textOf(values[i].number);
    }
    return texts;
}

}  // namespace zel
