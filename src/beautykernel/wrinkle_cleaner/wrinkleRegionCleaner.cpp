#include "beautykernel/wrinkle_cleaner/wrinkleRegionCleaner.h"

#include <algorithm>

#include "frame/zel_log.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/poisson/gradientRepair.h"
#include "zellab/imageproc/poisson/quietDonor.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace zellab {

namespace {

constexpr float kWorkingSide = 720.0f;  // longer side of the copy on which the box is found, at most
constexpr int kSmallestBox = 5;         // boxes with a shorter side below this are left alone
constexpr int kSmallestSide = 10;       // of the picture, in pixels
constexpr int kBlockSize = 9;           // pixels

/// A position of the working copy in the image.
int toPicture(int position, float factor) {
    return static_cast<int>((static_cast<float>(position) - 0.5f) * factor + 0.5f);
}

/// First and last position of a span of the working copy, in the image.
Span toPicture(Span working, float factor, int size) {
    const int first = std::max(toPicture(working.begin, factor), 0);
    const int last = std::min(toPicture(working.end - 1, factor), size - 1);
    return {first, last + 1};
}

}  // namespace

bool WrinkleRegionCleaner::Prepare(PlaneView<const Byte> mask) {
    m_region.reset();
    m_mask = mask;
    if (!m_mask.valid()) return false;
    const float scale = std::min(kWorkingSide / static_cast<float>(std::max(mask.width, mask.height)), 1.0f);
    const int workWidth = static_cast<int>(static_cast<float>(mask.width) * scale);
    const int workHeight = static_cast<int>(static_cast<float>(mask.height) * scale);
    Plane<Byte> work(workWidth, workHeight);
    if (!scalePlane(mask, work.view(), YuvFilter::linear)) return false;
    const PixelBox box = markedBox(work.view(), 0);
    if (box.x.length() < 2 || box.y.length() < 2) return false;
    m_region = box;
    printRemark("<[zel_RtKit] ERROR:> rvl %d %d %d %d", box.x.begin, box.x.end - 1, box.y.begin,
                box.y.end - 1);
    return true;
}

bool WrinkleRegionCleaner::Apply(ImageView image, int strength) {
    if (!m_region || !image.valid()) return false;
    if (std::min(image.width, image.height) < kSmallestSide) return true;
    const float factor =
        std::max(static_cast<float>(std::max(image.width, image.height)) / kWorkingSide, 1.0f);
    GradientRepair repair;
    repair.hole = {toPicture(m_region->x, factor, image.width), toPicture(m_region->y, factor, image.height)};
    if (std::min(repair.hole.x.length(), repair.hole.y.length()) < kSmallestBox) return true;
    repair.maskArea = repair.hole;
    repair.margin = kBlockSize + 1;
    repair.percent = strength / 2;
    repair.exchange = quietDonorExchange(kBlockSize);
    return repairByGradients(image, m_mask, repair);
}

}  // namespace zellab
