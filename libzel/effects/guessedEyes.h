#pragma once

#include <array>
#include <string>

#include "libzel/effect.h"

/// Eyes whose landmarks stand on nothing seen: behind dark glasses or hair there is nothing for an effect to do.

namespace zel {

/// Why each eye of a face, the picture's left one first, stays as it is; empty: it does not.
using EyeReasons = std::array<std::string, 2>;

inline constexpr const char* kEyeIsHidden = "is hidden by dark glasses or hair";

EyeReasons hiddenEyes(const Face& face);

/// One line of the log, where there is a reason.
void tellEyesThatStay(int face, const EyeReasons& reasons);

/// Puts back what lies nearer to the eyes that are to stay than to the other one.
/// @param before  the picture as it was
void putBackEyes(Image& image, const Image& before, const Face& face, const EyeReasons& stay);

}  // namespace zel
