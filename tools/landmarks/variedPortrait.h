#pragma once

#include "portrait/portrait.h"

namespace zeltrain {

/// The parameters of a portrait for training or measuring the landmark fit: the seed chooses person, turn,
/// light and background as always, and beyond that poses, expressions and lights far wider than a portrait
/// sitting's. `longSide` is the picture's height in pixels.
zel::PortraitParams variedPortrait(unsigned seed, int longSide);

}  // namespace zeltrain
