#include "cli/studio/chain.h"

#include <algorithm>

namespace zelcli::studio {

namespace {

constexpr std::size_t kMostSteps = 64;

std::string optionalText(const Json& json, const char* name) {
    const auto member = json.find(name);
    if (member == json.end() || member->is_null()) return {};
    if (!member->is_string()) throw Refused(400, std::string("'") + name + "' is no text");
    return member->get<std::string>();
}

std::vector<std::pair<std::string, std::string>> valuesOf(const zel_effect& effect, const Json& json) {
    std::vector<std::pair<std::string, std::string>> values;
    const auto given = json.find("values");
    if (given == json.end()) return values;
    if (!given->is_object()) throw Refused(400, "'values' is no object");
    for (const auto& [name, value] : given->items()) {
        if (!value.is_string()) throw Refused(400, "the value of '" + name + "' is no text");
        if (!parameterOf(effect, name))
            throw Refused(400, std::string(effect.name) + " has no parameter '" + name + "'");
        values.emplace_back(name, value.get<std::string>());
    }
    return values;
}

Step parseStep(const Json& json) {
    if (!json.is_object()) throw Refused(400, "a step is no object");
    Step step;
    if (zel_effect_find(textMember(json, "effect").c_str(), &step.effect) != ZEL_OK)
        throw Refused(400, zel_message());
    step.values = valuesOf(*step.effect, json);
    const auto off = json.find("off");
    if (off != json.end()) {
        if (!off->is_boolean()) throw Refused(400, "'off' is neither true nor false");
        step.off = off->get<bool>();
    }
    const auto strength = json.find("strength");
    if (strength != json.end()) {
        if (!strength->is_number()) throw Refused(400, "'strength' is no number");
        step.strength = strength->get<double>();
        if (!(step.strength >= 0 && step.strength <= 1)) throw Refused(400, "'strength' is out of range");
    }
    step.mask = optionalText(json, "mask");
    step.depth = optionalText(json, "depth");
    step.second = optionalText(json, "second");
    step.key = textOf(json);
    return step;
}

bool isGiven(const Step& step, const std::string& name) {
    return std::any_of(step.values.begin(), step.values.end(),
                       [&](const auto& value) { return value.first == name; });
}

}  // namespace

const zel_parameter* parameterOf(const zel_effect& effect, const std::string& name) {
    for (std::size_t i = 0; i < effect.parameter_count; ++i)
        if (effect.parameters[i]->name == name) return effect.parameters[i];
    return nullptr;
}

Chain parseChain(const Json& json) {
    if (!json.is_object()) throw Refused(400, "the chain is no object");
    const auto steps = json.find("steps");
    if (steps == json.end() || !steps->is_array()) throw Refused(400, "the chain has no list 'steps'");
    if (steps->size() > kMostSteps) throw Refused(400, "the chain has too many steps");
    Chain chain;
    for (const Json& step : *steps) chain.steps.push_back(parseStep(step));
    const auto faces = json.find("faces");
    if (faces != json.end() && !faces->is_null()) chain.faces = textOf(*faces);
    return chain;
}

Chain chainForAnyPicture(const Chain& chain, std::vector<std::string>& left) {
    Chain general;
    for (Step step : chain.steps) {
        const auto pointing = [&](const auto& value) {
            const zel_parameter& parameter = *parameterOf(*step.effect, value.first);
            return parameter.kind == ZEL_POINT || !parameter.default_value;
        };
        std::erase_if(step.values, pointing);
        step.mask.clear();
        step.depth.clear();
        if (whatLacks(step).empty())
            general.steps.push_back(std::move(step));
        else if (!step.off)
            left.emplace_back(step.effect->title);
    }
    return general;
}

std::string whatLacks(const Step& step) {
    for (std::size_t i = 0; i < step.effect->parameter_count; ++i) {
        const zel_parameter& parameter = *step.effect->parameters[i];
        if (!parameter.default_value && !isGiven(step, parameter.name)) return parameter.name;
    }
    if (step.effect->mask == ZEL_REQUIRED && step.mask.empty()) return "mask";
    if (step.effect->second == ZEL_REQUIRED && step.second.empty()) return "second";
    return {};
}

}  // namespace zelcli::studio
