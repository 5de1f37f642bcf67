#include "beautykernel/vignette/vignette.h"
#include "libzel/effects/effectLists.h"
#include "libzel/effects/effectParts.h"

namespace zel {

namespace {

void runVignette(EffectRun& run) {
    Image& image = run.image;
    zellab::vignette({image.rgba.data(), image.width, image.height},
                     {.strength = run.values.number("strength"),
                      .radius = run.values.number("radius"),
                      .softness = run.values.number("softness")});
}

Effect vignetteEffect() {
    Effect effect;
    effect.name = "vignette";
    effect.title = "Vignette";
    effect.operation = "zellab::vignette";
    effect.summary = "Darkens towards the corners, so that the eye stays with what is in the middle";
    effect.advice =
        "To hold the eye in the middle of a bright picture. Strength 0 leaves it, 0.3 is felt and not seen, "
        "1 makes corners black.";
    effect.parameters = {
        numberParameter("strength", 0, 1, "0.5",
                        "0 leaves the picture, 1 makes what is wholly outside black"),
        numberParameter("radius", 0, 1, "0.4",
                        "up to where nothing changes, as a share of the way from the centre to the corners"),
        numberParameter("softness", 0, 1, "0.6",
                        "from the radius on to where the whole strength acts, likewise; 0 is an edge")};
    effect.example = "zel apply vignette portrait.jpg -o framed.jpg --set strength=0.4";
    effect.run = runVignette;
    return effect;
}

}  // namespace

std::vector<Effect> finishEffects() {
    return {vignetteEffect()};
}

}  // namespace zel
