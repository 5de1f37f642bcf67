#include "gimp/procedures/arguments.h"

#include <cstddef>
#include <cstdio>

#include "gimp/run/valueText.h"

namespace zelgimp {

namespace {

/// Run mode, picture and layer come first in every procedure.
constexpr std::size_t kOwnArguments = 3;

GimpPDBArgType typeOf(zel_kind kind) {
    switch (kind) {
        case ZEL_NUMBER:
            return GIMP_PDB_FLOAT;
        case ZEL_WHOLE_NUMBER:
        case ZEL_SWITCH:
            return GIMP_PDB_INT32;
        case ZEL_COLOUR:
            return GIMP_PDB_COLOR;
        case ZEL_CHOICE:
        case ZEL_POINT:
        case ZEL_FILE:
        case ZEL_TEXT:
            break;
    }
    return GIMP_PDB_STRING;
}

/// "blur radius in pixels, limited ... (0 to 8192; 20 is usual)"
std::string helpOf(const zel_parameter& parameter) {
    std::string range, usual;
    if (parameter.kind == ZEL_SWITCH)
        range = "TRUE or FALSE";
    else if (parameter.maximum > parameter.minimum)
        range = textOfNumber(parameter.minimum) + " to " + textOfNumber(parameter.maximum);
    for (const char* const* choice = parameter.choices; choice && *choice; ++choice)
        range += std::string(range.empty() ? "" : ", ") + "\"" + *choice + "\"";
    if (parameter.default_value && *parameter.default_value) {
        usual = parameter.default_value;
        if (parameter.kind == ZEL_SWITCH) usual = truthOfText(usual) ? "TRUE" : "FALSE";
        if (typeOf(parameter.kind) == GIMP_PDB_STRING)
            usual = "\"\" is " + usual;
        else
            usual += " is usual";
    } else if (typeOf(parameter.kind) == GIMP_PDB_STRING) {
        usual = "\"\" for none";
    }
    const std::string both = range + (range.empty() || usual.empty() ? "" : "; ") + usual;
    return std::string(parameter.help) + (both.empty() ? "" : " (" + both + ")");
}

std::string needHelp(const char* what, zel_need need, const char* none) {
    return std::string(what) + (need == ZEL_REQUIRED ? "" : std::string("; -1: ") + none);
}

std::string colourText(const GimpRGB& colour) {
    guchar r = 0, g = 0, b = 0;
    gimp_rgb_get_uchar(&colour, &r, &g, &b);
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", r, g, b);
    return text;
}

/// An empty text stands for the default.
void takeValue(ValueTexts& texts, const zel_parameter& parameter, const GimpParam& value) {
    std::string text;
    switch (typeOf(parameter.kind)) {
        case GIMP_PDB_FLOAT:
            text = textOfNumber(value.data.d_float);
            break;
        case GIMP_PDB_INT32:
            text = parameter.kind == ZEL_SWITCH ? textOfTruth(value.data.d_int32 != 0)
                                                : std::to_string(value.data.d_int32);
            break;
        case GIMP_PDB_COLOR:
            text = colourText(value.data.d_color);
            break;
        default:
            text = value.data.d_string ? value.data.d_string : "";
    }
    if (!text.empty()) texts[parameter.name] = text;
}

}  // namespace

Arguments::Arguments(const zel_effect& effect) {
    add(GIMP_PDB_INT32, "run-mode",
        "RUN-INTERACTIVE (0) opens the dialog, RUN-NONINTERACTIVE (1), RUN-WITH-LAST-VALS (2)");
    add(GIMP_PDB_IMAGE, "image", "The picture");
    add(GIMP_PDB_DRAWABLE, "drawable", "The layer that is changed");
    if (effect.faces != ZEL_NO)
        add(GIMP_PDB_STRING, "faces",
            "A file of faces (FACES.json); \"\": those that the picture keeps, or else they are found");
    if (effect.mask != ZEL_NO)
        add(GIMP_PDB_DRAWABLE, "mask",
            needHelp("Channel, layer or selection (gimp-image-get-selection) that is white where it acts",
                     ZEL_OPTIONAL, effect.mask == ZEL_REQUIRED ? "the selection" : "none"));
    if (effect.second != ZEL_NO)
        add(GIMP_PDB_DRAWABLE, "second", needHelp("The layer that is mixed in", effect.second, "none"));
    if (effect.depth != ZEL_NO)
        add(GIMP_PDB_DRAWABLE, "depth",
            needHelp("A layer that is lighter where it is nearer", effect.depth, "it is estimated"));
    for (std::size_t i = 0; i < effect.parameter_count; ++i) addParameter(*effect.parameters[i]);
}

void Arguments::add(GimpPDBArgType type, const std::string& name, const std::string& help) {
    gchar* const nameText = m_texts.emplace_back(name).data();
    gchar* const helpText = m_texts.emplace_back(help).data();
    m_definitions.push_back({type, nameText, helpText});
}

void Arguments::addParameter(const zel_parameter& parameter) {
    add(typeOf(parameter.kind), parameter.name, helpOf(parameter));
}

ScriptRequest scriptRequest(const zel_effect& effect, const GimpParam* values) {
    ScriptRequest script{Request::of(effect), {}};
    Request& request = script.request;
    const GimpParam* value = values + kOwnArguments;
    if (effect.faces != ZEL_NO) {
        if (value->data.d_string) script.facesFile = value->data.d_string;
        ++value;
    }
    const auto take = [&](Source& source, zel_need need) {
        if (need == ZEL_NO) return;
        const Source told = sourceOf(values[1].data.d_image, (value++)->data.d_drawable);
        if (told.kind != Source::kNone) source = told;
    };
    take(request.mask, effect.mask);
    take(request.second, effect.second);
    take(request.depth, effect.depth);
    for (std::size_t i = 0; i < effect.parameter_count; ++i)
        takeValue(request.values, *effect.parameters[i], *value++);
    return script;
}

}  // namespace zelgimp
