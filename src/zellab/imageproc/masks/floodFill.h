#pragma once

namespace zellab {

/// Sets the zero region around the seed (4-neighbourhood) to 255. The seed is limited to the picture; a
/// non-zero seed changes nothing, nor does a null mask or a size of 0 or less.
void ScanlineFloodFill(unsigned char* mask, int width, int height, int seedX, int seedY);

}  // namespace zellab
