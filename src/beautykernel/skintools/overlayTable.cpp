#include "beautykernel/skintools/overlayTable.h"

#include <cstdlib>
#include <memory>

#include "zellab/imageproc/core/imageView.h"
#include "zellab/utils/zelFileUtils.h"

namespace zellab {

bool OverlayTable::load() {
    constexpr std::size_t kEntries = 256 * 256;
    constexpr int kChannels = 4;  // of the asset; the first byte of each entry counts
    int width = 0, height = 0;
    const std::unique_ptr<unsigned char, decltype(&std::free)> pixels(
        ZelFileUtils::LoadPPM("style/base/PSOverlay.bin", &width, &height, kChannels), std::free);
    if (!pixels || sampleCount(width, height) < kEntries) return false;
    m_values.resize(kEntries);
    for (std::size_t i = 0; i < kEntries; ++i) m_values[i] = pixels.get()[i * kChannels];
    return true;
}

}  // namespace zellab
