#pragma once

#include "portrait.h"
#include "portraitMath.h"

/// Colours of people and clothes, linear. The `shift` arguments are bell-shaped deviations between
/// individuals.

namespace zel::drawing {

inline constexpr int kSkinTones = 7;
inline constexpr int kIrisColours = 7;
inline constexpr int kHairColours = 8;

Colour skinColour(SkinTone tone, float lightShift, float warmShift);

struct IrisPalette {
    Colour inner, outer;
    float darkness = 0;
};
IrisPalette irisColours(IrisColour kind, float shift);

struct HairPalette {
    Colour base, sheen, brow;
};
HairPalette hairColours(HairColour kind, float shift);

Colour lipstickColour(float choice01);
Colour clothColour(int choice);

}  // namespace zel::drawing
