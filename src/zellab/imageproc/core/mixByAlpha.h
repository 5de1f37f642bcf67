#pragma once

namespace zellab {

/// result = before + (after - before) * alpha, truncated, for bytes 0 to 2 of RGBA pictures of one size;
/// byte 3 of `result` stays. `result` may be the same buffer as `before` or `after`.
/// @param alpha  limited to 0..1; NaN counts as 0
/// Nothing happens where a pointer is null or a side is not above 0.
void MixByAlpha(unsigned char* result, const unsigned char* before, const unsigned char* after, int width,
                int height, float alpha);

}  // namespace zellab
