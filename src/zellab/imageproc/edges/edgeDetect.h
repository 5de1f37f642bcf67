#pragma once

namespace zellab {

/// Finds edges by gradient, thinning and hysteresis: `edges` becomes 255 on edges, 0 elsewhere and on the
/// plane's border. A chain starts where the gradient reaches `high` and goes on while it is at least `low`
/// (swapped if they stand the wrong way round); with `autoThreshold` both come from the picture. `edges` may
/// be `plane` itself. Returns false, `edges` untouched, for a null buffer, a side below 2 or a row size that
/// is not the width.
bool EdgeDetectCanny(const unsigned char* plane, unsigned char* edges, int width, int height, int rowSize,
                     int reserved, int low, int high, bool autoThreshold);

}  // namespace zellab
