#pragma once

#include <cstdint>
#include <vector>

#include "gimp/dialog/viewMap.h"
#include "gimp/run/pixels.h"

namespace zelgimp {

/// The window's pixels, 0xffRRGGBB in rows of its width: the part of the picture that it shows. Reduced by the mean of
/// what falls on a pixel, enlarged without smoothing; what is transparent lies on a chequered ground, and what is beside
/// the picture is `outside`.
std::vector<std::uint32_t> viewPixels(const Rgba& picture, const ViewMap& map, std::uint32_t outside);

}  // namespace zelgimp
