#include "gimp/procedures/procedures.h"

#include <cstddef>
#include <new>
#include <string>

#include "gimp/dialog/portraitDialog.h"
#include "gimp/procedures/arguments.h"
#include "gimp/procedures/directRun.h"
#include "gimp/procedures/savedValues.h"
#include "gimp/run/refusal.h"

namespace zelgimp {

namespace {

constexpr const char* kPrefix = "plug-in-zel-";
/// The dialog with no effect chosen yet.
constexpr const char* kDialogProcedure = "plug-in-zel-portrait-dialog";
constexpr const char *kMenu = "<Image>/Filters/Portrait", *kAuthors = "the libzel_effects authors",
                     *kLicence = "MIT", *kYear = "2026", *kLayers = "RGB*, GRAY*";

void install(const std::string& name, const std::string& blurb, const std::string& help,
             const std::string& label, const GimpParamDef* arguments, int count) {
    gimp_install_procedure(name.c_str(), blurb.c_str(), help.c_str(), kAuthors, kLicence, kYear,
                           label.c_str(), kLayers, GIMP_PLUGIN, count, 0, arguments, nullptr);
    gimp_plugin_menu_register(name.c_str(), kMenu);
}

/// A line under a menu's letters has no sense where titles come from a list: underscores are spelled out.
std::string menuLabel(const std::string& title) {
    std::string label;
    for (const char c : title) label += c == '_' ? std::string("__") : std::string(1, c);
    return label + "...";
}

std::string helpText(const zel_effect& effect) {
    std::string text = std::string(effect.summary) +
                       ". Works on the whole layer in 8 bits and is blended through the selection.";
    if (effect.faces != ZEL_NO)
        text += " Faces are found once a picture, which keeps them (image parasite zel-faces).";
    return text + " The same from a shell: " + effect.example;
}

/// The effect of a procedure; null for the dialog's own.
const zel_effect* effectOf(const std::string& procedure) {
    if (procedure == kDialogProcedure) return nullptr;
    const zel_effect* effect = nullptr;
    libzel::require(zel_effect_find(procedure.substr(std::string(kPrefix).size()).c_str(), &effect));
    return effect;
}

Request lastRequest(const zel_effect& effect, gint32 image) {
    Request request = Request::of(effect);
    takeTexts(request, image, SavedValues(effect.name).last());
    return request;
}

GimpPDBStatusType run(const std::string& procedure, gint count, const GimpParam* values) {
    const auto mode = static_cast<GimpRunMode>(values[0].data.d_int32);
    const gint32 image = values[1].data.d_image, drawable = values[2].data.d_drawable;
    const zel_effect* const effect = effectOf(procedure);
    if (mode == GIMP_RUN_INTERACTIVE) {
        const bool done = runDialog(TargetLayer(image, drawable), effect);
        return done ? GIMP_PDB_SUCCESS : GIMP_PDB_CANCEL;
    }
    const TargetLayer layer(image, drawable);
    if (!effect)
        throw Refusal("The dialog of all effects needs somebody who uses it: scripts call the effects.");
    if (mode == GIMP_RUN_WITH_LAST_VALS) {
        runDirectly(lastRequest(*effect, image), {}, layer);
        return GIMP_PDB_SUCCESS;
    }
    if (count != Arguments(*effect).count()) return GIMP_PDB_CALLING_ERROR;
    const ScriptRequest script = scriptRequest(*effect, values);
    runDirectly(script.request, script.facesFile, layer);
    return GIMP_PDB_SUCCESS;
}

}  // namespace

void registerProcedures() {
    const zel_effect* const first = zel_effect_at(0);
    if (!first) return;
    install(kDialogProcedure, "Portrait effects",
            "Opens one dialog with all portrait effects, to be searched.", "All Effects...",
            Arguments(*first).definitions(), 3);
    for (std::size_t i = 0; i < zel_effect_count(); ++i) {
        const zel_effect& effect = *zel_effect_at(i);
        const Arguments arguments(effect);
        install(std::string(kPrefix) + effect.name, std::string(effect.title) + ": " + effect.summary,
                helpText(effect), menuLabel(effect.title), arguments.definitions(), arguments.count());
    }
}

void runProcedure(const gchar* name, gint count, const GimpParam* values, gint* resultCount,
                  GimpParam** results) {
    static GimpParam result[2];
    static std::string why;
    why.clear();
    GimpPDBStatusType status = GIMP_PDB_EXECUTION_ERROR;
    try {
        gegl_init(nullptr, nullptr);
        gimp_plugin_enable_precision();
        status = run(name, count, values);
    } catch (const libzel::Error& error) {
        why = sentenceOf(error.what());
        if (error.status() == ZEL_CANCELLED) status = GIMP_PDB_CANCEL;
    } catch (const std::bad_alloc&) {
        why = "There is not enough memory for this picture.";
    } catch (const std::exception& error) {
        why = error.what();
    }
    result[0].type = GIMP_PDB_STATUS;
    result[0].data.d_status = status;
    result[1].type = GIMP_PDB_STRING;
    result[1].data.d_string = why.data();
    *resultCount = status == GIMP_PDB_EXECUTION_ERROR && !why.empty() ? 2 : 1;
    *results = result;
}

}  // namespace zelgimp
