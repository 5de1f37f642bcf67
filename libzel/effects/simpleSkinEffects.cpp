#include "libzel/effects/effectLists.h"
#include "libzel/effects/effectParts.h"
#include "zel_effects/zel_effects.h"

namespace zel {

namespace {

using ZelImageCore::TableSkin;

/// The largest radius that a picture could use: the library limits it to a quarter of the shorter side.
constexpr double kLargestRadius = 8192;

Parameter radiusParameter(const char* defaultValue) {
    return in("pixels", integerParameter("radius", 0, kLargestRadius, defaultValue,
                                         "blur radius in pixels, limited to a quarter of the shorter side"));
}

Parameter levelParameter() {
    return integerParameter("level", 0, 10, "5", "strength; 0 leaves the picture as it is");
}

void runBright(EffectRun& run) {
    Image& image = run.image;
    if (!TableSkin::ImageProcessWithBright(image.rgba.data(), image.width, image.height,
                                           run.values.integer("radius"), run.values.integer("level")))
        throw Failure("the library refused the picture");
}

void runMascara(EffectRun& run) {
    Image& image = run.image;
    TableSkin::ImageProcessWithMascara(image.rgba.data(), image.width, image.height,
                                       run.values.integer("radius"), run.values.integer("level"));
}

void runNatureSmooth(EffectRun& run) {
    Image& image = run.image;
    TableSkin::ImageProcessWithNatureSmooth(image.rgba.data(), image.width, image.height,
                                            run.values.integer("radius"));
}

}  // namespace

std::vector<Effect> simpleSkinEffects() {
    std::vector<Effect> effects(3);
    Effect& bright = effects[0];
    bright.name = "bright";
    bright.title = "Clear skin";
    bright.operation = "ZelImageCore::TableSkin::ImageProcessWithBright";
    bright.summary = "Deepens fine dark detail against its surroundings (high pass, colour burn)";
    bright.advice =
        "For flat pictures whose eyes, brows and lips want weight. Level 0 leaves the picture, 10 makes hard "
        "shadows; a larger radius reaches broader shades.";
    bright.parameters = {radiusParameter("12"), levelParameter()};
    bright.example = "zel apply bright portrait.png -o clear.png --set radius=12 --set level=4";
    bright.run = runBright;

    Effect& mascara = effects[1];
    mascara.name = "mascara";
    mascara.title = "Mascara";
    mascara.operation = "ZelImageCore::TableSkin::ImageProcessWithMascara";
    mascara.summary = "Darkens lashes and brows: the kernel of bright with a small radius";
    mascara.advice =
        "For lashes and brows in a close portrait. Level 0 leaves them, 10 draws them in ink; the radius "
        "should be about a lash's width.";
    mascara.parameters = {radiusParameter("4"), levelParameter()};
    mascara.example = "zel apply mascara portrait.png -o lashes.png --set radius=4 --set level=6";
    mascara.run = runMascara;

    Effect& natureSmooth = effects[2];
    natureSmooth.name = "nature-smooth";
    natureSmooth.title = "Natural smoothing";
    natureSmooth.operation = "ZelImageCore::TableSkin::ImageProcessWithNatureSmooth";
    natureSmooth.summary = "Smooths tones and keeps detail: shadows move to a toned copy";
    natureSmooth.advice =
        "For a gentle finish over a whole portrait. A small radius keeps pores, a large one evens whole "
        "cheeks.";
    natureSmooth.parameters = {radiusParameter("20")};
    natureSmooth.example = "zel apply nature-smooth portrait.jpg -o smooth.jpg --compare sheet.png";
    natureSmooth.run = runNatureSmooth;
    return effects;
}

}  // namespace zel
