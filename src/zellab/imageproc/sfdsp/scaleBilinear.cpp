#include "zellab/imageproc/sfdsp/scaleBilinear.h"

#include <cstring>

#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/sfdsp/bilinearRows.h"

namespace zellab {

bool ScaleBilinearThreaded(const unsigned char* source, int sourceWidth, int sourceHeight,
                           unsigned char* target, int targetWidth, int targetHeight, int channels) {
    if (!source || !target || sourceWidth <= 0 || sourceHeight <= 0 || targetWidth <= 0 ||
        targetHeight <= 0 || channels <= 0)
        return false;
    const std::size_t targetBytes = sampleCount(targetWidth, targetHeight, channels);
    if (sourceWidth == targetWidth && sourceHeight == targetHeight) {
        std::memmove(target, source, targetBytes);
        return false;
    }
    if (channels != 1 && channels != 4) {
        std::memset(target, 255, targetBytes);
        return false;
    }

    const BilinearRows rows({sourceWidth, sourceHeight, targetWidth, targetHeight}, source, channels);
    const std::size_t rowBytes = sampleCount(targetWidth, 1, channels);
    parallelRows(targetHeight, [&](int begin, int end) {
        BilinearRows::Scratch scratch;
        for (int y = begin; y < end; ++y)
            rows.scale(y, scratch, target + static_cast<std::size_t>(y) * rowBytes);
    });
    return true;
}

}  // namespace zellab
