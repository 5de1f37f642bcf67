#pragma once

namespace zellab {

/// Removes haze from an RGBA picture in place: each colour channel is stretched so that half a percent of its
/// pixels ends at either end. A channel of one value becomes 127. Nothing happens for a null picture or a
/// side below 1.
void defog(unsigned char* image, int width, int height);

}  // namespace zellab
