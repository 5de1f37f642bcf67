#include "beautykernel/inpainting/gradientInpainter.h"

#include "zellab/imageproc/poisson/gradientRepair.h"
#include "zellab/imageproc/poisson/quietDonor.h"

namespace zellab {

bool GradientInpainter::Run(unsigned char* image, const unsigned char* mask, int width, int height,
                            int strength) {
    if (width < m_blockSize || height < m_blockSize || strength == 0) return true;
    if (!image || !mask) return false;
    const PlaneView<const Byte> maskView(mask, width, height);
    GradientRepair repair;
    repair.hole = markedBox(maskView, 0);
    if (repair.hole.empty()) return false;
    repair.maskArea = {{0, width}, {0, height}};
    if (m_blockSize % 2 == 0) --m_blockSize;
    repair.margin = m_blockSize + 1;
    repair.percent = strength;
    repair.exchange = quietDonorExchange(m_blockSize);
    return repairByGradients(ImageView(image, width, height), maskView, repair);
}

}  // namespace zellab
