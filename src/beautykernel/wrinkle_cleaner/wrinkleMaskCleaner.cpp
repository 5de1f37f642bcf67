#include "beautykernel/wrinkle_cleaner/wrinkleMaskCleaner.h"

#include <algorithm>

#include "beautykernel/wrinkle_cleaner/neighbourDonor.h"
#include "zellab/imageproc/poisson/gradientRepair.h"

namespace zellab {

int WrinkleMaskCleaner::blockSizeFor(int shorterSide) {
    int size = static_cast<int>(static_cast<float>(shorterSide) * 0.01f);
    if (size % 2 == 0) --size;
    if (size < 6) size = 5;
    return std::min(size, 30) * 2 - 5;
}

bool WrinkleMaskCleaner::Run(ImageView image, PlaneView<const Byte> mask, int strength) {
    constexpr int kSmallestSide = 20;
    if (strength == 0) return true;
    const int shorterSide = std::min(image.width, image.height);
    if (!image.valid() || !mask.valid() || shorterSide < kSmallestSide) return false;
    GradientRepair repair;
    repair.hole = markedBox(mask, kHoleAbove);
    if (repair.hole.empty()) return false;
    repair.maskArea = {{0, image.width}, {0, image.height}};
    const int blockSize = blockSizeFor(shorterSide);
    repair.margin = blockSize + 1;
    repair.anyMaskAbove = kHoleAbove;
    repair.percent = strength;
    repair.exchange = neighbourDonorExchange(blockSize);
    return repairByGradients(image, mask, repair);
}

}  // namespace zellab
