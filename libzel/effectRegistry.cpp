#include "effectRegistry.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "effects/effectLists.h"
#include "nearestWord.h"

namespace zel {

namespace {

/// "7", "0.5": without the zeros that std::to_string adds.
std::string shortNumber(double value) {
    char text[32];
    char* const end = std::to_chars(text, text + sizeof text, value).ptr;
    return std::string(text, end);
}

[[noreturn]] void refuse(const Effect& effect, const Parameter& parameter, const std::string& value,
                         const std::string& wanted) {
    throw UsageError(effect.name + ": " + parameter.name + " must be " + wanted + ", not '" + value + "'");
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
    return shortNumber(parameter.minimum) + ".." + shortNumber(parameter.maximum);
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

std::string canonicalValue(const Effect& effect, const Parameter& parameter, const std::string& value) {
    switch (parameter.kind) {
        case ParameterKind::number:
            return canonicalNumber(effect, parameter, value);
        case ParameterKind::integer:
            return canonicalInteger(effect, parameter, value);
        case ParameterKind::toggle:
            return canonicalToggle(effect, parameter, value);
        case ParameterKind::choice:
            return canonicalChoice(effect, parameter, value);
        case ParameterKind::text:
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
    else if (const auto nearest = nearestWord(name, names); !nearest.empty())
        hint = "; did you mean '" + nearest + "'?";
    else
        hint = "; see zel apply " + effect.name + " --help";
    throw UsageError(effect.name + " has no parameter '" + name + "'" + hint);
}

std::vector<Effect> gatherEffects() {
    std::vector<Effect> effects;
    for (const auto& list : {scenarioEffects(), eyeEffects(), reshapeEffects(), repairEffects(),
                             skinEffects(), simpleSkinEffects(), tableBaseEffects(), defocusEffects()})
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
    const auto nearest = nearestWord(name, names);
    throw UsageError("there is no effect '" + name + "'; " +
                     (nearest.empty() ? "see zel effects" : "did you mean '" + nearest + "'?"));
}

ParameterValues parseValues(const Effect& effect, const std::vector<std::string>& assignments) {
    std::map<std::string, std::string> typed;
    for (const auto& word : assignments) {
        const auto equals = word.find('=');
        if (equals == std::string::npos || equals == 0)
            throw UsageError("--set takes NAME=VALUE, not '" + word + "'");
        const Parameter& parameter = findParameter(effect, word.substr(0, equals));
        typed[parameter.name] = canonicalValue(effect, parameter, word.substr(equals + 1));
    }
    ParameterValues values;
    for (const auto& parameter : effect.parameters) {
        const auto given = typed.find(parameter.name);
        if (given != typed.end()) {
            values.set(parameter.name, given->second);
        } else if (!parameter.defaultValue.empty() || parameter.kind == ParameterKind::text) {
            values.set(parameter.name, parameter.defaultValue);
        } else {
            throw UsageError(effect.name + " needs --set " + parameter.name + "=VALUE (" +
                             describeRange(parameter) + ")");
        }
    }
    return values;
}

std::string describeRange(const Parameter& parameter) {
    std::string text;
    switch (parameter.kind) {
        case ParameterKind::number:
            text = hasRange(parameter) ? rangeText(parameter) : "number";
            break;
        case ParameterKind::integer:
            text = hasRange(parameter) ? "whole, " + rangeText(parameter) : "whole number";
            break;
        case ParameterKind::toggle:
            text = "true or false";
            break;
        case ParameterKind::choice:
            for (const auto& choice : parameter.choices) text += (text.empty() ? "" : "|") + choice;
            break;
        case ParameterKind::text:
            text = "text";
            break;
    }
    return parameter.defaultValue.empty() ? text : text + ", default " + parameter.defaultValue;
}

}  // namespace zel
