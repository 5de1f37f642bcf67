#include "palette.h"

namespace zel::drawing {

namespace {

/// An sRGB triple as a painter names it.
struct Swatch {
    float r, g, b;
};
Colour linear(const Swatch& s) {
    return fromSrgb(s.r, s.g, s.b);
}

constexpr Swatch kSkin[kSkinTones] = {{238, 207, 190}, {229, 190, 166}, {216, 171, 142}, {198, 151, 117},
                                      {172, 122, 90},  {131, 87, 62},   {90, 59, 45}};

struct IrisSwatches {
    Swatch inner, outer;
    float darkness;
};
constexpr IrisSwatches kIris[kIrisColours] = {
    {{176, 196, 208}, {120, 154, 184}, 0.0f}, {{140, 164, 178}, {72, 108, 148}, 0.2f},
    {{160, 164, 158}, {100, 112, 118}, 0.2f}, {{150, 142, 92}, {92, 110, 80}, 0.35f},
    {{150, 108, 58}, {92, 82, 48}, 0.5f},     {{122, 76, 42}, {76, 46, 28}, 0.75f},
    {{66, 40, 27}, {38, 25, 20}, 1.0f}};

struct HairSwatches {
    Swatch base, sheen, brow;
};
constexpr HairSwatches kHair[kHairColours] = {
    {{30, 25, 24}, {118, 112, 116}, {34, 27, 25}},    {{50, 37, 30}, {140, 112, 92}, {46, 34, 28}},
    {{82, 58, 42}, {172, 132, 98}, {66, 47, 36}},     {{112, 58, 34}, {206, 132, 84}, {92, 54, 37}},
    {{134, 102, 68}, {222, 186, 136}, {104, 78, 54}}, {{182, 146, 98}, {246, 220, 168}, {130, 100, 68}},
    {{120, 116, 112}, {206, 204, 202}, {92, 86, 82}}, {{190, 187, 182}, {246, 245, 242}, {150, 145, 140}}};

constexpr Swatch kLipstick[] = {{168, 52, 62}, {190, 88, 92}, {150, 44, 72}, {196, 104, 98}, {132, 40, 48}};

constexpr Swatch kCloth[] = {{38, 48, 70},    {196, 192, 184}, {120, 44, 46},  {64, 84, 72},
                             {52, 52, 56},    {148, 160, 176}, {176, 140, 98}, {86, 66, 92},
                             {216, 206, 188}, {72, 98, 126},   {30, 32, 36},   {182, 120, 112}};

}  // namespace

Colour skinColour(SkinTone tone, float lightShift, float warmShift) {
    const Colour base = linear(kSkin[static_cast<int>(tone)]);
    const float light = 1.0f + 0.05f * lightShift;
    return base * Colour{light, light * (1.0f - 0.012f * warmShift), light * (1.0f - 0.04f * warmShift)};
}

IrisPalette irisColours(IrisColour kind, float shift) {
    const IrisSwatches& swatches = kIris[static_cast<int>(kind)];
    const float gain = 1.0f + 0.10f * shift;
    return {linear(swatches.inner) * gain, linear(swatches.outer) * gain, swatches.darkness};
}

HairPalette hairColours(HairColour kind, float shift) {
    const HairSwatches& swatches = kHair[static_cast<int>(kind)];
    const float gain = 1.0f + 0.14f * shift;
    return {linear(swatches.base) * gain, linear(swatches.sheen), linear(swatches.brow)};
}

Colour lipstickColour(float choice01) {
    return linear(kLipstick[std::min(4, static_cast<int>(choice01 * 5.0f))]);
}

Colour clothColour(int choice) {
    return linear(kCloth[choice % 12]);
}

}  // namespace zel::drawing
