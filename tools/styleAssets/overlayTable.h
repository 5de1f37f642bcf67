#pragma once

#include <vector>

namespace zelassets {

/// The overlay blend as a picture of 256 by 256 RGBA texels: texel base * 256 + blend holds, in bytes 0 to 2,
/// the blend of the two bytes. The base decides between multiplying and screening, so that a blend of 128
/// leaves every base as it is and a brighter one lifts it.
std::vector<unsigned char> overlayTable();

}  // namespace zelassets
