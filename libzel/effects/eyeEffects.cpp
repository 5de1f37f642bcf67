#include "beautykernel/eyebright/eyeBright.h"
#include "facepoints/faceData.h"
#include "libzel/effects/effectLists.h"
#include "libzel/effects/effectParts.h"
#include "libzel/effects/guessedEyes.h"

namespace zel {

namespace {

/// Lids that are nearer to each other than this share of the eye's length are closed.
constexpr float kClosed = 0.12f;

zellab::EyeTuning tuningOf(const ParameterValues& values) {
    const auto share = [&](const char* name) { return values.number(name) / 100.0f; };
    return {.overallGain = share("overallGain"),
            .bandOffset = share("bandOffset"),
            .reservedShade = 0.0f,  // never read, so nobody is asked for it
            .highlightGain = share("highlightGain"),
            .whiteGain = share("whiteGain"),
            .darkTolerance = share("darkTolerance"),
            .irisGain = share("irisGain"),
            .filterRadius = values.number("filterRadius"),
            .filterEps = values.number("filterEps"),
            .filterScale = values.number("filterScale")};
}

/// Of an eye in which no iris was found.
const char* whyNoIris(const zellab::Vector2f* points, zellab::EyeSide side) {
    return zellab::lidGap(points, side) < kClosed ? "has its lids closed" : "shows no iris";
}

void runAutoEyeBright(EffectRun& run) {
    Image& image = run.image;
    const zellab::EyeTuning tuning = tuningOf(run.values);
    forFaces(run, [&](zellab::CInterFacePoint* all, int face) {
        const zellab::Vector2f* points = zellab::facePointsAt(all, face);
        EyeReasons stay = hiddenEyes(faceAt(run, face));
        const zellab::EyePair found =
            zellab::EyeBright::RunOn({stay[0].empty(), stay[1].empty()},
                                     {image.rgba.data(), image.width, image.height}, points, tuning);
        if (stay[0].empty() && !found.left) stay[0] = whyNoIris(points, zellab::EyeSide::left);
        if (stay[1].empty() && !found.right) stay[1] = whyNoIris(points, zellab::EyeSide::right);
        tellEyesThatStay(face, stay);
        return true;
    });
}

}  // namespace

std::vector<Effect> eyeEffects() {
    Effect effect;
    effect.name = "auto-eye-bright";
    effect.title = "Brighten eyes";
    effect.operation = "ZelImageCore::TableSkin::ImageProcessWithAutoEyeBright";
    effect.summary =
        "Makes the eyes of faces clearer: whites lifted, irises lighter and crisper; eyes that are closed, "
        "or hidden "
        "by dark glasses or hair, stay";
    effect.advice =
        "For eyes that lie in shade or look tired. Lower overallGain first; at 0 nothing changes, at 100 "
        "with high whiteGain whites begin to look painted.";
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
