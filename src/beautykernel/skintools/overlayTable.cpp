#include "beautykernel/skintools/overlayTable.h"

#include "beautykernel/skintools/styleAsset.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

bool OverlayTable::load() {
    constexpr std::size_t kEntries = 256 * 256;
    constexpr int kChannels = 4;  // of the asset; the first byte of each entry counts
    const StyleAsset asset = loadStyleAsset("style/base/PSOverlay.bin");
    if (!asset.pixels || sampleCount(asset.width, asset.height) < kEntries) return false;
    m_values.resize(kEntries);
    for (std::size_t i = 0; i < kEntries; ++i) m_values[i] = asset.pixels.get()[i * kChannels];
    return true;
}

}  // namespace zellab
