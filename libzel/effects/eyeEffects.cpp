#include "libzel/effects/effectLists.h"
#include "libzel/effects/effectParts.h"
#include "zel_effects/zel_effects.h"

namespace zel {

namespace {

/// The library keeps this float and never reads it, so the command does not ask for it.
constexpr float kReservedShade = 0.0f;

void runAutoEyeBright(EffectRun& run) {
    Image& image = run.image;
    const auto value = [&run](const char* name) { return run.values.number(name); };
    forFaces(run, [&](zellab::CInterFacePoint* points, int face) {
        ZelImageCore::TableSkin::ImageProcessWithAutoEyeBright(
            image.rgba.data(), image.width, image.height, points, face, value("overallGain"),
            value("bandOffset"), kReservedShade, value("highlightGain"), value("whiteGain"),
            value("darkTolerance"), value("irisGain"), value("filterRadius"), value("filterEps"),
            value("filterScale"));
        return true;
    });
}

}  // namespace

std::vector<Effect> eyeEffects() {
    Effect effect;
    effect.name = "auto-eye-bright";
    effect.title = "Brighten eyes";
    effect.operation = "ZelImageCore::TableSkin::ImageProcessWithAutoEyeBright";
    effect.summary = "Makes the eyes of faces clearer: whites lifted, irises lighter and crisper";
    effect.parameters = {
        in("%", numberParameter("overallGain", 0, 100, "100", "percent of the whole effect")),
        in("%", numberParameter("whiteGain", 0, 100, "70", "percent by which light whites are lifted")),
        in("%", numberParameter("highlightGain", 0, 100, "40", "percent by which the whites' target rises")),
        numberParameter("darkTolerance", 0, 100, "50",
                        "percent; how dark a white may be and still be lifted"),
        in("%",
           numberParameter("irisGain", -100, 100, "60", "percent by which the iris's ring is lightened")),
        numberParameter("bandOffset", 0, 100, "0", "percent; keeps the ring to the iris's rim"),
        numberParameter("filterRadius", 0, 4, "1", "exponent of the iris's smoothing"),
        numberParameter("filterEps", 0, 1000, "0.4",
                        "variance that counts as smooth, by 65025 to the exponent"),
        numberParameter("filterScale", 0, 4, "1",
                        "what is left of smooth variation: 0 nothing, 1 all, above 1 more"),
        faceIndexParameter()};
    effect.faces = ZEL_REQUIRED;
    effect.example =
        "zel apply auto-eye-bright portrait.jpg -o eyes.jpg --set whiteGain=80 --compare sheet.png";
    effect.run = runAutoEyeBright;
    return {effect};
}

}  // namespace zel
