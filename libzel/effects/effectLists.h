#pragma once

#include <vector>

#include "libzel/effect.h"

/// Each family of effects is one file here; effectRegistry.cpp strings the lists together.

namespace zel {

std::vector<Effect> defocusEffects();  // defocus, mix-mask
std::vector<Effect> eyeEffects();      // auto-eye-bright
std::vector<Effect> finishEffects();   // vignette
std::vector<Effect>
repairEffects();  // auto-remove-black-circle, remove-black-circle, inpaint, wrinkle-cleaner
std::vector<Effect> reshapeEffects();     // slim-face, auto-slim-face, zoom-eye, auto-zoom-eye
std::vector<Effect> scenarioEffects();    // scenario
std::vector<Effect> simpleSkinEffects();  // bright, mascara, nature-smooth
std::vector<Effect> skinEffects();        // qorn-skin-retouch, qorn-skin-whitening, skin, skin-color
std::vector<Effect> tableBaseEffects();   // sharp, gauss-blur, mosaic, color-mixing, alpha-mix

}  // namespace zel
