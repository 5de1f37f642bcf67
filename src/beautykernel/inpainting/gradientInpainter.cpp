#include "beautykernel/inpainting/gradientInpainter.h"

#include "zellab/imageproc/poisson/gradientRepair.h"
#include "zellab/imageproc/poisson/quietDonor.h"

namespace zellab {

bool GradientInpainter::Run(ImageView image, PlaneView<const Byte> mask, int strength) {
    if (image.width < m_blockSize || image.height < m_blockSize || strength == 0) return true;
    if (!image.valid() || !mask.valid()) return false;
    GradientRepair repair;
    repair.hole = markedBox(mask, 0);
    if (repair.hole.empty()) return false;
    repair.maskArea = {{0, image.width}, {0, image.height}};
    if (m_blockSize % 2 == 0) --m_blockSize;
    repair.margin = m_blockSize + 1;
    repair.percent = strength;
    repair.exchange = quietDonorExchange(m_blockSize);
    return repairByGradients(image, mask, repair);
}

}  // namespace zellab
