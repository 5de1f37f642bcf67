#include "libzel/effectRegistry.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "frame/nearestWord.h"
#include "frame/shortNumber.h"
#include "libzel/effects/effectLists.h"

namespace zel {

namespace {

[[noreturn]] void refuse(const Effect& effect, const Parameter& parameter, const std::string& value,
                         const std::string& wanted) {
    throw Failure(effect.name + ": " + parameter.name + " must be " + wanted + ", not '" + value + "'",
                  ZEL_BAD_VALUE);
}

/// The whole text as a number of type T, or no result. from_chars knows no locale and no leading blanks.
template <typename T>
bool parseWhole(const std::string& text, T& value) {
    const char* begin = text.data();
    const char* end = begin + text.size();
    if (begin != end && *begin == '+') ++begin;
    const auto [rest, error] = std::from_chars(begin, end, value);
    return error == std::errc() && rest == end;
}

bool hasRange(const Parameter& parameter) {
    return parameter.minimum < parameter.maximum;
}

std::string rangeText(const Parameter& parameter) {
    return zellab::shortNumber(parameter.minimum) + ".." + zellab::shortNumber(parameter.maximum);
}

std::string numberWanted(const Parameter& parameter, const std::string& kind) {
    return hasRange(parameter) ? kind + " in " + rangeText(parameter) : kind;
}

std::string canonicalNumber(const Effect& effect, const Parameter& parameter, const std::string& value) {
    float number = 0;
    const bool read = parseWhole(value, number) && std::isfinite(number);
    if (!read || (hasRange(parameter) && !(number >= static_cast<float>(parameter.minimum) &&
                                           number <= static_cast<float>(parameter.maximum))))
        refuse(effect, parameter, value, numberWanted(parameter, "a number"));
    // A denormal makes std::stof throw; no parameter tells it from zero.
    return std::fpclassify(number) == FP_SUBNORMAL ? "0" : value;
}

std::string canonicalInteger(const Effect& effect, const Parameter& parameter, const std::string& value) {
    int number = 0;
    if (!parseWhole(value, number) ||
        (hasRange(parameter) && (number < parameter.minimum || number > parameter.maximum)))
        refuse(effect, parameter, value, numberWanted(parameter, "a whole number"));
    return std::to_string(number);
}

std::string canonicalToggle(const Effect& effect, const Parameter& parameter, const std::string& value) {
    for (const char* word : {"true", "on", "yes", "1"})
        if (value == word) return "true";
    for (const char* word : {"false", "off", "no", "0"})
        if (value == word) return "false";
    refuse(effect, parameter, value, "true or false");
}

std::string canonicalChoice(const Effect& effect, const Parameter& parameter, const std::string& value) {
    const auto& choices = parameter.choices;
    if (std::find(choices.begin(), choices.end(), value) != choices.end()) return value;
    std::string list;
    for (const auto& choice : choices) list += (list.empty() ? "" : ", ") + choice;
    refuse(effect, parameter, value, "one of " + list);
}

/// Two fractions from 0 to 1 with a comma between, or nothing.
std::optional<std::pair<float, float>> parsePoint(const std::string& text) {
    const auto comma = text.find(',');
    float x = 0, y = 0;
    if (comma == std::string::npos || !parseWhole(text.substr(0, comma), x) ||
        !parseWhole(text.substr(comma + 1), y))
        return std::nullopt;
    const auto inside = [](float fraction) { return fraction >= 0.0f && fraction <= 1.0f; };
    if (!inside(x) || !inside(y)) return std::nullopt;
    return std::pair{x, y};
}

std::string canonicalPoint(const Effect& effect, const Parameter& parameter, const std::string& value) {
    const auto& words = parameter.choices;
    if (std::find(words.begin(), words.end(), value) != words.end() || parsePoint(value)) return value;
    std::string wanted;
    for (const auto& word : words) wanted += word + " or ";
    refuse(effect, parameter, value, wanted + "two fractions like 0.5,0.4");
}

std::string canonicalColour(const Effect& effect, const Parameter& parameter, const std::string& value) {
    const bool hexadecimal = value.find_first_not_of("0123456789abcdefABCDEF", 1) == std::string::npos;
    if (value.size() != 7 || value.front() != '#' || !hexadecimal)
        refuse(effect, parameter, value, "a colour like #ff8800");
    return value;
}

std::string canonicalValue(const Effect& effect, const Parameter& parameter, const std::string& value) {
    switch (parameter.kind) {
        case ZEL_NUMBER:
            return canonicalNumber(effect, parameter, value);
        case ZEL_WHOLE_NUMBER:
            return canonicalInteger(effect, parameter, value);
        case ZEL_SWITCH:
            return canonicalToggle(effect, parameter, value);
        case ZEL_CHOICE:
            return canonicalChoice(effect, parameter, value);
        case ZEL_POINT:
            return canonicalPoint(effect, parameter, value);
        case ZEL_COLOUR:
            return canonicalColour(effect, parameter, value);
        case ZEL_FILE:
        case ZEL_TEXT:
            break;
    }
    return value;
}

const Parameter& findParameter(const Effect& effect, const std::string& name) {
    std::vector<std::string> names;
    for (const auto& parameter : effect.parameters) {
        if (parameter.name == name) return parameter;
        names.push_back(parameter.name);
    }
    std::string hint;
    if (names.empty())
        hint = "; it takes none";
    else if (const auto nearest = zellab::nearestWord(name, names); !nearest.empty())
        hint = "; did you mean '" + nearest + "'?";
    throw Failure(effect.name + " has no parameter '" + name + "'" + hint, ZEL_UNKNOWN_NAME);
}

std::vector<Effect> gatherEffects() {
    std::vector<Effect> effects;
    for (const auto& list :
         {scenarioEffects(), eyeEffects(), reshapeEffects(), repairEffects(), skinEffects(),
          simpleSkinEffects(), tableBaseEffects(), defocusEffects(), finishEffects()})
        effects.insert(effects.end(), list.begin(), list.end());
    return effects;
}

}  // namespace

const std::vector<Effect>& allEffects() {
    static const std::vector<Effect> effects = gatherEffects();
    return effects;
}

const Effect& findEffect(const std::string& name) {
    std::vector<std::string> names;
    for (const auto& effect : allEffects()) {
        if (effect.name == name) return effect;
        names.push_back(effect.name);
    }
    const auto nearest = zellab::nearestWord(name, names);
    throw Failure(
        "there is no effect '" + name + "'" + (nearest.empty() ? "" : "; did you mean '" + nearest + "'?"),
        ZEL_UNKNOWN_NAME);
}

ParameterValues checkedValues(const Effect& effect, const std::map<std::string, std::string>& given) {
    ParameterValues values;
    for (const auto& [name, value] : given)
        values.set(name, canonicalValue(effect, findParameter(effect, name), value));
    for (const auto& parameter : effect.parameters) {
        if (given.contains(parameter.name)) continue;
        if (parameter.mustBeGiven())
            throw Failure(effect.name + " needs a value for " + parameter.name +
                              (hasRange(parameter) ? " (" + rangeText(parameter) + ")" : ""),
                          ZEL_BAD_VALUE);
        values.set(parameter.name, parameter.defaultValue);
    }
    return values;
}

std::optional<std::pair<float, float>> ParameterValues::point(const std::string& name) const {
    return parsePoint(m_values.at(name));
}

}  // namespace zel
