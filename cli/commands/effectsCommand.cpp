#include "cli/commands/effectsCommand.h"

#include <algorithm>
#include <cstring>
#include <nlohmann/json.hpp>

#include "cli/commands/wrapText.h"
#include "cli/library.h"

namespace zelcli {

namespace {

using Json = nlohmann::ordered_json;

const char* kindText(zel_kind kind) {
    switch (kind) {
        case ZEL_NUMBER:
            return "number";
        case ZEL_WHOLE_NUMBER:
            return "integer";
        case ZEL_SWITCH:
            return "toggle";
        case ZEL_CHOICE:
            return "choice";
        case ZEL_COLOUR:
        case ZEL_POINT:
        case ZEL_FILE:
        case ZEL_TEXT:
            break;
    }
    return "text";
}

/// The colour lookup is a parameter that has an option of its own.
zel_need cubeNeed(const zel_effect& effect) {
    return takesCube(effect) ? ZEL_OPTIONAL : ZEL_NO;
}

std::string padded(const std::string& text, std::size_t width) {
    return text + std::string(width > text.size() ? width - text.size() : 1, ' ');
}

/// "--faces FACES.json (required)", one for each thing that the effect takes beside the picture.
std::vector<std::string> needLines(const zel_effect& effect) {
    std::vector<std::string> lines;
    const auto add = [&](const char* option, zel_need need) {
        if (need != ZEL_NO) lines.push_back(std::string(option) + " (" + needText(need) + ")");
    };
    add("--faces FACES.json", effect.faces);
    add("--mask MASK.png", effect.mask);
    add("--second IMAGE", effect.second);
    add("--cube FILE.cube", cubeNeed(effect));
    add("--depth MAP.png", effect.depth);
    add("--mask-out MASK.png", effect.mask_out);
    add("--depth-out MAP.png", effect.depth_out);
    return lines;
}

/// The parameter lines of one effect, indented, without those that the manual alone tells.
std::string parameterLines(const zel_effect& effect) {
    const auto parameters = setParameters(effect);
    std::size_t width = 0;
    for (const auto* parameter : parameters) width = std::max(width, std::strlen(parameter->name) + 2);
    std::string text;
    for (const auto* parameter : parameters)
        if (!parameter->advanced)
            text += "  " + padded(parameter->name, width) + parameter->help + " (" +
                    describeRange(*parameter) + ")\n";
    return text;
}

Json parameterJson(const zel_parameter& parameter) {
    Json json = {{"name", parameter.name}, {"kind", kindText(parameter.kind)}};
    json["default"] = parameter.default_value ? Json(parameter.default_value) : Json(nullptr);
    json["help"] = parameter.help;
    if (parameter.minimum < parameter.maximum) {
        json["minimum"] = parameter.minimum;
        json["maximum"] = parameter.maximum;
    }
    if (parameter.kind == ZEL_CHOICE) {
        json["choices"] = Json::array();
        for (const char* const* choice = parameter.choices; *choice; ++choice)
            json["choices"].push_back(*choice);
    }
    return json;
}

}  // namespace

std::string effectsTable() {
    std::string text;
    for (const zel_effect* effect : allEffects()) {
        text.append(effect->name).append("\n  ").append(effect->summary).append("\n");
        for (const auto& line : needLines(*effect)) text += "  " + line + "\n";
        std::string parameters = parameterLines(*effect);
        text += parameters + "\n";
    }
    if (!text.empty()) text.pop_back();
    return text;
}

std::string effectsJson() {
    Json effects = Json::array();
    for (const zel_effect* effect : allEffects()) {
        Json parameters = Json::array();
        for (const auto* parameter : setParameters(*effect)) parameters.push_back(parameterJson(*parameter));
        effects.push_back({{"name", effect->name},
                           {"operation", effect->operation},
                           {"summary", effect->summary},
                           {"advice", effect->advice},
                           {"example", effect->example},
                           {"faces", needText(effect->faces)},
                           {"mask", needText(effect->mask)},
                           {"second", needText(effect->second)},
                           {"cube", needText(cubeNeed(*effect))},
                           {"depth", needText(effect->depth)},
                           {"maskOut", needText(effect->mask_out)},
                           {"depthOut", needText(effect->depth_out)},
                           {"parameters", parameters}});
    }
    return Json{{"effects", effects}}.dump(2) + "\n";
}

std::string effectHelp(const zel_effect& effect) {
    std::string text = std::string(effect.name) + ": " + effect.summary + "\n\n";
    text += wrapText(effect.advice) + "\n\n";
    text += std::string("Usage: zel apply ") + effect.name + " IN... -o OUT [--set NAME=VALUE]...\n";
    if (!setParameters(effect).empty()) text += "\nParameters for --set:\n" + parameterLines(effect);
    const auto needs = needLines(effect);
    if (!needs.empty()) text += "\nBeside the picture it takes or gives:\n";
    for (const auto& line : needs) text += "  " + line + "\n";
    text += std::string("\nExample:\n  ") + effect.example + "\n";
    text += std::string("\nIt runs ") + effect.operation + ". Other options: zel apply --help\n";
    return text;
}

}  // namespace zelcli
