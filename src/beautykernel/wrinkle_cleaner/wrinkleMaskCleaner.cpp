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

bool WrinkleMaskCleaner::Run(unsigned char* image, int width, int height, const unsigned char* mask,
                             int strength) {
    constexpr int kSmallestSide = 20;
    if (strength == 0) return true;
    if (!image || !mask || std::min(width, height) < kSmallestSide) return false;
    const PlaneView<const Byte> maskView(mask, width, height);
    GradientRepair repair;
    repair.hole = markedBox(maskView, kHoleAbove);
    if (repair.hole.empty()) return false;
    repair.maskArea = {{0, width}, {0, height}};
    const int blockSize = blockSizeFor(std::min(width, height));
    repair.margin = blockSize + 1;
    repair.anyMaskAbove = kHoleAbove;
    repair.percent = strength;
    repair.exchange = neighbourDonorExchange(blockSize);
    return repairByGradients(ImageView(image, width, height), maskView, repair);
}

}  // namespace zellab
