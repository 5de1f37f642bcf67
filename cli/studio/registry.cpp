#include "cli/studio/registry.h"

#include "cli/library.h"
#include "zel/zel.h"

namespace zelcli::studio {

namespace {

const char* kindName(zel_kind kind) {
    switch (kind) {
        case ZEL_NUMBER:
            return "number";
        case ZEL_WHOLE_NUMBER:
            return "whole";
        case ZEL_CHOICE:
            return "choice";
        case ZEL_SWITCH:
            return "switch";
        case ZEL_POINT:
            return "point";
        case ZEL_COLOUR:
            return "colour";
        case ZEL_FILE:
            return "file";
        case ZEL_TEXT:
            break;
    }
    return "text";
}

Json parameterJson(const zel_parameter& parameter) {
    Json json = {{"name", parameter.name},           {"title", parameter.title},
                 {"help", parameter.help},           {"unit", parameter.unit},
                 {"kind", kindName(parameter.kind)}, {"advanced", parameter.advanced != 0}};
    json["default"] = parameter.default_value ? Json(parameter.default_value) : Json(nullptr);
    if (parameter.minimum < parameter.maximum) {
        json["minimum"] = parameter.minimum;
        json["maximum"] = parameter.maximum;
        json["step"] = parameter.step;
    }
    json["choices"] = Json::array();
    for (const char* const* choice = parameter.choices; choice && *choice; ++choice)
        json["choices"].push_back(*choice);
    return json;
}

}  // namespace

Json registryJson() {
    Json effects = Json::array();
    for (std::size_t i = 0; i < zel_effect_count(); ++i) {
        const zel_effect& effect = *zel_effect_at(i);
        Json parameters = Json::array();
        for (std::size_t j = 0; j < effect.parameter_count; ++j)
            parameters.push_back(parameterJson(*effect.parameters[j]));
        effects.push_back({{"name", effect.name},
                           {"title", effect.title},
                           {"summary", effect.summary},
                           {"advice", effect.advice},
                           {"faces", needText(effect.faces)},
                           {"mask", needText(effect.mask)},
                           {"second", needText(effect.second)},
                           {"depth", needText(effect.depth)},
                           {"parameters", parameters}});
    }
    return {{"effects", effects}};
}

}  // namespace zelcli::studio
