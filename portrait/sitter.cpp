#include "sitter.h"

#include "palette.h"
#include "randomSource.h"

namespace zel::drawing {

namespace {

enum Stream : unsigned { kBodyStream = 1, kColourStream, kSceneStream };

template <typename Kind>
Kind pick(RandomSource& random, const std::optional<Kind>& given, int count) {
    const int choice = random.below(count);
    return given ? *given : static_cast<Kind>(choice);
}

/// A factor about 1 with the deviation, kept to `reach` deviations.
float factor(RandomSource& random, float deviation) {
    return 1.0f + deviation * random.bellShaped() * 0.8f;
}

HairStyle pickStyle(float uniform, float masculine) {
    constexpr HairStyle kMale[] = {HairStyle::shaved, HairStyle::crop,       HairStyle::crop,
                                   HairStyle::swept,  HairStyle::sideParted, HairStyle::sideParted,
                                   HairStyle::curly};
    constexpr HairStyle kFemale[] = {HairStyle::bob,         HairStyle::longStraight, HairStyle::longWavy,
                                     HairStyle::longWavy,    HairStyle::curly,        HairStyle::tiedBack,
                                     HairStyle::longStraight};
    const int index = static_cast<int>(uniform * 7.0f);
    return masculine > 0.5f ? kMale[index] : kFemale[index];
}

void chooseFeatures(Sitter& s, const PortraitParams& p, RandomSource& random) {
    const float sexDraw = random.uniform();
    // Most people are clearly one or the other.
    s.masculine = settled(p.masculine, smoothStep(0.3f, 0.7f, sexDraw) * 0.8f + 0.1f, 0, 1);
    s.faceWidth = settled(p.faceWidth, factor(random, 0.045f), 0.85f, 1.15f);
    s.jawWidth = settled(p.jawWidth, factor(random, 0.05f), 0.85f, 1.15f);
    s.chinLength = settled(p.chinLength, factor(random, 0.035f), 0.85f, 1.15f);
    s.foreheadHeight = factor(random, 0.05f);
    s.cheeks = factor(random, 0.2f);
    s.eyeSize = settled(p.eyeSize, factor(random, 0.05f), 0.85f, 1.15f);
    s.eyeSpacing = settled(p.eyeSpacing, factor(random, 0.03f), 0.85f, 1.15f);
    s.eyeSlant = settled(p.eyeSlant, 0.25f + 0.35f * random.bellShaped(), -1, 1);
    const float eyeOpen = settled(p.eyeOpen, 0.98f + 0.07f * random.bellShaped(), 0, 1.2f);
    s.eyeOpen[0] = settled(p.eyeOpenLeft, eyeOpen, 0, 1.2f);
    s.eyeOpen[1] = settled(p.eyeOpenRight, eyeOpen, 0, 1.2f);
    s.wink = settled(p.wink, 0, -1, 1);
    s.laugh = settled(p.laugh, 0, 0, 1);
    s.crease = random.range(0.5f, 1.2f);
    const float gazeX = 0.12f * random.bellShaped(), gazeY = 0.08f * random.bellShaped();
    s.gaze = {settled(p.gazeX, gazeX, -1, 1), settled(p.gazeY, gazeY, -1, 1)};
    const float browBase = mix(0.85f, 1.2f, s.masculine);
    s.browThickness = settled(p.browThickness, browBase * factor(random, 0.13f), 0.4f, 1.8f);
    s.browArch =
        settled(p.browArch, clamp01(mix(0.65f, 0.3f, s.masculine) + 0.2f * random.bellShaped()), 0, 1);
    s.browHeight = random.bellShaped() * 1.2f - mix(0.0f, -1.5f, s.masculine);
    s.noseWidth = settled(p.noseWidth, factor(random, 0.07f), 0.8f, 1.25f);
    s.noseLength = settled(p.noseLength, factor(random, 0.04f), 0.88f, 1.12f);
    s.noseTip = factor(random, 0.2f);
    s.mouthWidth = settled(p.mouthWidth, factor(random, 0.05f), 0.85f, 1.15f);
    s.lipFullness =
        settled(p.lipFullness, mix(1.08f, 0.88f, s.masculine) * factor(random, 0.13f), 0.6f, 1.5f);
    s.smile = settled(p.smile, random.range(0.1f, 0.8f), -0.5f, 1);
    const float paint = clamp01(random.range(-0.5f, 0.8f)) * (1.0f - s.masculine);
    s.lipstick = settled(p.lipstick, paint, 0, 1);
    const float beard = clamp01(random.range(-0.3f, 0.9f)) * smoothStep(0.5f, 0.8f, s.masculine);
    s.stubble = settled(p.stubble, beard, 0, 1);
    const float styleDraw = random.uniform();
    s.style = p.hairStyle ? *p.hairStyle : pickStyle(styleDraw, s.masculine);
    s.partSide = random.chance(0.5f) ? -1.0f : 1.0f;
    s.hairVolume = random.range(0.85f, 1.25f);
    s.clothing = pick(random, p.clothing, 4);
}

void chooseColours(Sitter& s, const PortraitParams& p, RandomSource& random) {
    s.tone = pick(random, p.skinTone, kSkinTones);
    s.flush = random.range(0.25f, 0.8f);
    s.oil = random.range(0.25f, 0.8f);
    s.melanin = static_cast<float>(s.tone) / (kSkinTones - 1);
    s.skin = skinColour(s.tone, random.bellShaped(), random.bellShaped());

    // Light irises and hair go with light skin unless somebody asks for the contrary.
    const float lightness = clamp01(1.15f - 1.7f * s.melanin);
    const int palest = static_cast<int>((1.0f - lightness) * (kIrisColours - 1));
    const int irisDraw = palest + random.below(kIrisColours - palest);
    const IrisColour iris = p.irisColour ? *p.irisColour : static_cast<IrisColour>(irisDraw);
    const IrisPalette irisPalette = irisColours(iris, random.bellShaped());
    s.irisInner = irisPalette.inner;
    s.irisOuter = irisPalette.outer;
    s.irisDarkness = irisPalette.darkness;

    const float hairDraw = random.uniform();
    const bool old = random.chance(0.08f);
    int hair = static_cast<int>(hairDraw * hairDraw * (lightness > 0.4f ? 6.0f : 2.5f));
    if (lightness > 0.4f) hair = static_cast<int>(hairDraw * 6.0f);
    if (old) hair = 6 + (hairDraw > 0.6f);
    const HairColour hairKind = p.hairColour ? *p.hairColour : static_cast<HairColour>(hair);
    const HairPalette hairPalette = hairColours(hairKind, random.bellShaped());
    s.hair = hairPalette.base;
    s.hairSheen = hairPalette.sheen;
    s.browHair = hairPalette.brow;
    s.lipTint = lipstickColour(random.uniform());
    s.cloth = clothColour(random.below(1000));
}

void placeHead(Scene& s, const PortraitParams& p, RandomSource& random) {
    constexpr float kHeadMm = 233;  // chin to crown of the average head
    const float head = settled(p.headHeight, random.range(0.40f, 0.52f), 0.1f, 1.2f);
    // A wide picture keeps the head's share of its height; a narrow one must still hold the face's width.
    s.pixelsPerMm = head * static_cast<float>(s.height) / kHeadMm;
    if (!p.headHeight) s.pixelsPerMm = std::min(s.pixelsPerMm, 0.72f * static_cast<float>(s.width) / 150.0f);
    const float x = settled(p.centreX, 0.5f + 0.025f * random.bellShaped(), -0.5f, 1.5f);
    const float y = settled(p.centreY, 0.44f + 0.015f * random.bellShaped(), -0.5f, 1.5f);
    s.centre = {x * static_cast<float>(s.width), y * static_cast<float>(s.height)};
    s.yaw = radians(settled(p.yaw, 6.0f * random.bellShaped(), -22, 22));
    s.roll = radians(settled(p.roll, 2.5f * random.bellShaped(), -45, 45));
    s.tilt = radians(settled(p.tilt, 2.5f * random.bellShaped(), -12, 12));
}

void lightScene(Scene& s, const PortraitParams& p, RandomSource& random) {
    const float side = random.chance(0.5f) ? 1.0f : -1.0f;
    const float direction = radians(settled(p.lightDirection, side * random.range(18, 52), -80, 80));
    const float height = radians(settled(p.lightHeight, random.range(20, 45), -10, 75));
    const float warmth = settled(p.lightWarmth, 0.2f + 0.35f * random.bellShaped(), -1, 1);
    const float contrast = settled(p.lightContrast, random.range(0.25f, 0.7f), 0, 1);
    s.keyDirection = {sineOf(direction) * cosineOf(height), -sineOf(height),
                      cosineOf(direction) * cosineOf(height)};
    const Colour tint = warmth > 0 ? mix(Colour{1, 1, 1}, Colour{1.12f, 1.0f, 0.80f}, warmth)
                                   : mix(Colour{1, 1, 1}, Colour{0.88f, 1.0f, 1.16f}, -warmth);
    s.key = tint * mix(0.62f, 1.30f, contrast);
    s.fill = mix(Colour{1, 1, 1}, tint, 0.4f) * mix(0.38f, 0.07f, contrast);
    s.sky = Colour{0.94f, 0.99f, 1.06f} * mix(0.42f, 0.20f, contrast);
}

}  // namespace

float settled(const std::optional<double>& given, float chosen, float minimum, float maximum) {
    const bool set = given && *given == *given;
    const double value = set ? *given : static_cast<double>(chosen);
    return static_cast<float>(
        std::min(std::max(value, static_cast<double>(minimum)), static_cast<double>(maximum)));
}

Sitter resolveSitter(const PortraitParams& params) {
    Sitter sitter;
    sitter.seed = params.seed;
    RandomSource body(params.seed, kBodyStream), colours(params.seed, kColourStream);
    chooseFeatures(sitter, params, body);
    chooseColours(sitter, params, colours);
    return sitter;
}

Scene resolveScene(const PortraitParams& params, const Sitter& sitter) {
    Scene scene;
    scene.width = params.width;
    scene.height = params.height;
    scene.seed = params.seed;
    RandomSource random(params.seed, kSceneStream);
    placeHead(scene, params, random);
    lightScene(scene, params, random);
    scene.background = pick(random, params.background, 5);
    scene.defocus = settled(params.defocus, random.range(0.35f, 0.75f), 0, 1);
    constexpr float kMeteredSkin = 0.36f;
    scene.exposure = powerOf(kMeteredSkin / luminance(sitter.skin), 0.25f) *
                     exp2Of(settled(params.exposure, 0.12f * random.bellShaped(), -2, 2));
    scene.noise = settled(params.noise, random.range(0.08f, 0.3f), 0, 1);
    return scene;
}

}  // namespace zel::drawing
