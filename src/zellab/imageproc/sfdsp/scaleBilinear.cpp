#include "zellab/imageproc/sfdsp/scaleBilinear.h"

#include "frame/zel_log.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/sfdsp/bilinearRows.h"

namespace zellab {

namespace {

template <typename From, typename To>
bool scale(const From& source, const To& target) {
    if (!source.valid() || !target.valid()) return false;
    if (source.width == target.width && source.height == target.height) {
        copyPixels(source, target);
        return false;
    }
    const BilinearRows rows(source, target.width, target.height);
    const int missing = parallelRows(target.height, [&](int begin, int end) {
        BilinearRows::Scratch scratch;
        for (int y = begin; y < end; ++y) rows.scale(y, scratch, target.row(y));
    });
    for (int thread = 1; thread <= missing; ++thread) ZEL_LOG_ERROR("error creating thread.%d", thread);
    return true;
}

}  // namespace

bool ScaleBilinearThreaded(ConstImageView source, ImageView target) {
    return scale(source, target);
}

bool ScaleBilinearThreaded(PlaneView<const Byte> source, PlaneView<Byte> target) {
    return scale(source, target);
}

}  // namespace zellab
