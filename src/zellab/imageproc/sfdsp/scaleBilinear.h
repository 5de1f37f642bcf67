#pragma once

namespace zellab {

/// Scales by bilinear interpolation from the top left corner of each sample, rows split over workers.
/// `channels` is 1 (a plane) or 4 (RGBA: the three colours are scaled, the target's alpha is 255); rows of
/// both buffers are tightly packed.
///
/// Returns true where something was scaled. False means one of: equal sizes, and the source was copied;
/// another channel count, and the target is white; a null buffer or a side of 0 or less, and the target is
/// as it was.
bool ScaleBilinearThreaded(const unsigned char* source, int sourceWidth, int sourceHeight,
                           unsigned char* target, int targetWidth, int targetHeight, int channels);

}  // namespace zellab
