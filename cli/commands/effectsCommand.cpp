#include "effectsCommand.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "effectRegistry.h"

namespace zel {

namespace {

using Json = nlohmann::ordered_json;

const char* needText(Need need) {
    switch (need) {
        case Need::optional:
            return "optional";
        case Need::required:
            return "required";
        case Need::no:
            break;
    }
    return "no";
}

const char* kindText(ParameterKind kind) {
    switch (kind) {
        case ParameterKind::integer:
            return "integer";
        case ParameterKind::toggle:
            return "toggle";
        case ParameterKind::choice:
            return "choice";
        case ParameterKind::text:
            return "text";
        case ParameterKind::number:
            break;
    }
    return "number";
}

std::string padded(const std::string& text, std::size_t width) {
    return text + std::string(width > text.size() ? width - text.size() : 1, ' ');
}

/// "--faces FACES.json (required)", one for each thing that the effect takes beside the picture.
std::vector<std::string> needLines(const Effect& effect) {
    std::vector<std::string> lines;
    const auto add = [&](const char* option, Need need) {
        if (need != Need::no) lines.push_back(std::string(option) + " (" + needText(need) + ")");
    };
    add("--faces FACES.json", effect.faces);
    add("--mask MASK.png", effect.mask);
    add("--second IMAGE", effect.second);
    add("--cube FILE.cube", effect.cube);
    add("--depth MAP.png", effect.depth);
    add("--mask-out MASK.png", effect.maskOut);
    add("--depth-out MAP.png", effect.depthOut);
    return lines;
}

/// The parameter lines of one effect, indented, without those that the manual alone tells.
std::string parameterLines(const Effect& effect) {
    std::size_t width = 0;
    for (const auto& parameter : effect.parameters) width = std::max(width, parameter.name.size() + 2);
    std::string text;
    for (const auto& parameter : effect.parameters)
        if (!parameter.offFirstPage)
            text += "  " + padded(parameter.name, width) + parameter.help + " (" + describeRange(parameter) +
                    ")\n";
    return text;
}

Json parameterJson(const Parameter& parameter) {
    Json json = {{"name", parameter.name}, {"kind", kindText(parameter.kind)}};
    const bool mustBeGiven = parameter.defaultValue.empty() && parameter.kind != ParameterKind::text;
    json["default"] = mustBeGiven ? Json(nullptr) : Json(parameter.defaultValue);
    json["help"] = parameter.help;
    const bool number = parameter.kind == ParameterKind::number || parameter.kind == ParameterKind::integer;
    if (number && parameter.minimum < parameter.maximum) {
        json["minimum"] = parameter.minimum;
        json["maximum"] = parameter.maximum;
    }
    if (parameter.kind == ParameterKind::choice) json["choices"] = parameter.choices;
    return json;
}

}  // namespace

std::string effectsTable() {
    std::string text;
    for (const Effect& effect : allEffects()) {
        text += effect.name + "\n  " + effect.summary + "\n";
        for (const auto& line : needLines(effect)) text += "  " + line + "\n";
        std::string parameters = parameterLines(effect);
        text += parameters + "\n";
    }
    if (!text.empty()) text.pop_back();
    return text;
}

std::string effectsJson() {
    Json effects = Json::array();
    for (const Effect& effect : allEffects()) {
        Json parameters = Json::array();
        for (const auto& parameter : effect.parameters) parameters.push_back(parameterJson(parameter));
        effects.push_back({{"name", effect.name},
                           {"operation", effect.operation},
                           {"summary", effect.summary},
                           {"example", effect.example},
                           {"faces", needText(effect.faces)},
                           {"mask", needText(effect.mask)},
                           {"second", needText(effect.second)},
                           {"cube", needText(effect.cube)},
                           {"depth", needText(effect.depth)},
                           {"maskOut", needText(effect.maskOut)},
                           {"depthOut", needText(effect.depthOut)},
                           {"parameters", parameters}});
    }
    return Json{{"effects", effects}}.dump(2) + "\n";
}

std::string effectHelp(const Effect& effect) {
    std::string text = effect.name + ": " + effect.summary + "\n\n";
    text += "Usage: zel apply " + effect.name + " IN... -o OUT [--set NAME=VALUE]...\n";
    if (!effect.parameters.empty()) text += "\nParameters for --set:\n" + parameterLines(effect);
    const auto needs = needLines(effect);
    if (!needs.empty()) text += "\nBeside the picture it takes or gives:\n";
    for (const auto& line : needs) text += "  " + line + "\n";
    text += "\nExample:\n  " + effect.example + "\n";
    text += "\nIt runs " + effect.operation + ". Other options: zel apply --help\n";
    return text;
}

}  // namespace zel
