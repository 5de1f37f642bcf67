#pragma once

#include "portrait/image.h"

namespace zel {

/// Puts the moles back that a repair of spots took out. A mole is dark in red too, which a pimple is not, darker and
/// larger than a freckle, and round.
/// @param before  the picture as it was
/// @param pupils  their distance in pixels
void putBackMoles(Image& repaired, const Image& before, float pupils);

}  // namespace zel
