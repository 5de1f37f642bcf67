#include "libzel/effects/blockEdges.h"
#include "libzel/effects/effectLists.h"
#include "libzel/effects/effectParts.h"
#include "zel_effects/zel_effects.h"

namespace zel {

namespace {

using ZelImageCore::TableSkin;

constexpr const char* kTemperatureHelp = "colour temperature: 0 cool, 0.5 as it is, 1 warm";

/// --mask as the library takes it; null where none was given. The library reads it only.
unsigned char* maskOf(const EffectRun& run) {
    return run.mask ? const_cast<unsigned char*>(maskOfPictureSize(run).samples.data()) : nullptr;
}

void runRetouch(EffectRun& run) {
    Image& image = run.image;
    softenBlockEdges(image);  // levels are stretched, and blocks with them
    FaceInfoBlock faces(run.faces);
    TableSkin::ImageProcessWithQornSkinRetouch(image.rgba.data(), image.width, image.height,
                                               run.values.number("strength"), faces.get(), maskOf(run));
}

void runWhitening(EffectRun& run) {
    Image& image = run.image;
    softenBlockEdges(image);
    FaceInfoBlock faces(run.faces);
    float params[] = {run.values.number("level"), run.values.number("strength")};
    unsigned char* prepared =
        run.second ? const_cast<unsigned char*>(secondOfPictureSize(run).rgba.data()) : nullptr;
    TableSkin::ImageProcessWithQornSkinWhitening(image.rgba.data(), image.width, image.height, params,
                                                 faces.get(), maskOf(run), prepared);
}

void runSkin(EffectRun& run) {
    Image& image = run.image;
    float params[] = {run.values.number("radius"), run.values.number("mix"), run.values.number("level"),
                      run.values.number("tone")};
    TableSkin::ImageProcessWithSkin(image.rgba.data(), image.width, image.height, params, nullptr);
}

void runSkinColor(EffectRun& run) {
    constexpr int kTableSide = 64;
    Image& image = run.image;
    const std::vector<unsigned char> table = lookupOf(run, "looks/identity.cube");
    TableSkin::ImageProcessWithSkinColor(image.rgba.data(), image.width, image.height,
                                         run.values.number("strength"), run.values.number("level"),
                                         table.data(), kTableSide, kTableSide);
}

Parameter brightnessParameter(const char* help) {
    // Each level lifts by about three; light pictures that fill the range already bleach from the second on.
    return numberParameter("level", 0, 10, "1", help);
}

Effect retouchEffect() {
    Effect effect;
    effect.name = "qorn-skin-retouch";
    effect.title = "Retouch skin";
    effect.operation = "ZelImageCore::TableSkin::ImageProcessWithQornSkinRetouch";
    effect.summary = "One call for skin: levels, clear eyes, smoothed lightness, lifted shadows, a tone";
    effect.advice =
        "One step for a head and shoulders in good light. Strength 0 leaves levels and eyes alone in effect, "
        "at 1 skin is as smooth as it gets.";
    effect.parameters = {numberParameter(
        "strength", 0, 1, "0.7", "share of the smoothing and the tone; levels and eyes are always full")};
    effect.faces = ZEL_OPTIONAL;
    effect.mask = ZEL_OPTIONAL;
    effect.example = "zel apply qorn-skin-retouch portrait.jpg -o out.jpg --set strength=0.7";
    effect.run = runRetouch;
    return effect;
}

Effect whiteningEffect() {
    Effect effect;
    effect.name = "qorn-skin-whitening";
    effect.title = "Whiten skin";
    effect.operation = "ZelImageCore::TableSkin::ImageProcessWithQornSkinWhitening";
    effect.summary = "Brightens the whole picture and the eyes of its first face, and turns it warm or cool";
    effect.advice =
        "For dull light and tired skin. Level 0 lifts a little, 1 or 2 is daylight, 10 washes out.";
    effect.parameters = {
        brightnessParameter("brightness, truncated to whole steps; 0 lifts a little as well"),
        numberParameter("strength", 0, 1, "0.5", kTemperatureHelp)};
    effect.faces = ZEL_OPTIONAL;
    effect.mask = ZEL_OPTIONAL;
    effect.second = ZEL_OPTIONAL;
    effect.example =
        "zel apply qorn-skin-whitening portrait.jpg -o out.jpg --set level=3 --set strength=0.55";
    effect.run = runWhitening;
    return effect;
}

Effect skinEffect() {
    Effect effect;
    effect.name = "skin";
    effect.title = "Smooth skin";
    effect.operation = "ZelImageCore::TableSkin::ImageProcessWithSkin";
    effect.summary = "Smooths reddish surfaces between their edges, and brightens and tones everything";
    effect.advice =
        "For rough skin in even light; red things beside the face are smoothed too. Mix 0 leaves the "
        "texture, 10 takes it away.";
    effect.parameters = {
        in("pixels", numberParameter("radius", 0, 100, "8",
                                     "of the smoothing in pixels; at 0 the tone alone is applied")),
        numberParameter("mix", 0, 10, "7", "share of the smoothing, in tenths"),
        brightnessParameter("brightness, truncated to whole steps; 0 lifts a little as well"),
        numberParameter("tone", -1, 1, "0", "above 0 warmer, below 0 cooler")};
    effect.example = "zel apply skin portrait.jpg -o out.jpg --set radius=8 --set mix=7 --set level=2";
    effect.run = runSkin;
    return effect;
}

Effect skinColorEffect() {
    Effect effect;
    effect.name = "skin-color";
    effect.title = "Tint skin";
    effect.operation = "ZelImageCore::TableSkin::ImageProcessWithSkinColor";
    effect.summary = "Brightens and tints through a colour table: a neutral one, or a cube file";
    effect.advice =
        "For a tint over the whole picture, or a look of your own from a cube file. Strength 0.5 is neutral, "
        "0 cool, 1 warm; level 0 is nearly as it was, 10 washes out.";
    effect.parameters = {numberParameter("strength", 0, 1, "0.6", kTemperatureHelp),
                         brightnessParameter("brightness; 0 lifts a little as well"), cubeParameter()};
    effect.example = "zel apply skin-color portrait.jpg -o out.jpg --set strength=0.6 --set level=2";
    effect.run = runSkinColor;
    return effect;
}

}  // namespace

std::vector<Effect> skinEffects() {
    return {retouchEffect(), whiteningEffect(), skinEffect(), skinColorEffect()};
}

}  // namespace zel
