#include "bokeh/cpuTiles.h"

#include <algorithm>
#include <system_error>

#include "bokeh/tileGather.h"
#include "bokeh/weightPlane.h"
#include "frame/callSettings.h"
#include "frame/processorCount.h"
#include "platform/simdLevel.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zellab::Bokeh {

namespace {

KernelSet kernelsFor(const ConvolutionSource& source) {
    const bool spins = source.spin.valid();
    if (source.radius.valid())
        return spins ? KernelSet::spinPyramid(source.kernel) : KernelSet::pyramid(source.kernel);
    const int radius = std::clamp(source.maximumRadius, 0, kMaxRadius);
    return spins ? KernelSet::spinConstant(source.kernel, radius)
                 : KernelSet::constant(source.kernel, radius);
}

/// A constant radius is a plane of it.
Plane<Byte> constantRadius(const ConvolutionSource& source) {
    if (source.radius.valid()) return {};
    Plane<Byte> plane(source.image.width, source.image.height);
    std::fill_n(plane.data(), plane.size(),
                static_cast<Byte>(std::clamp(source.maximumRadius, 0, kMaxRadius)));
    return plane;
}

/// All that tiles are gathered from.
class Convolution {
public:
    Convolution(const ConvolutionSource& source, platform::SimdLevel level, int workers)
        : m_kernels(kernelsFor(source)),
          m_weights(weightPlane(source.image, source.look)),
          m_constant(constantRadius(source)),
          m_gather({source.image, source.radius.valid() ? source.radius : m_constant.view(), m_weights.view(),
                    source.spin, &m_kernels, std::max(source.maximumRadius, 0), source.look},
                   level, workers) {}
    void gather(const Tile& tile, const ImageView& target) const { m_gather.gather(tile, target); }

private:
    KernelSet m_kernels;
    Plane<std::uint16_t> m_weights;
    Plane<Byte> m_constant;
    TileGather m_gather;
};

std::vector<CpuTile> computeTilesAt(const ConvolutionSource& source, std::atomic<int>& next, int workers,
                                    platform::SimdLevel level) {
    const TileGrid grid(source.image.width, source.image.height);
    std::vector<CpuTile> tiles;
    int number = next.fetch_add(1);
    if (number >= grid.count()) return tiles;

    const WorkerCount count(workers);
    const Convolution convolution(source, level, workers);
    for (; number < grid.count(); number = next.fetch_add(1)) {
        const Tile place = grid.tile(number);
        CpuTile& tile = tiles.emplace_back(
            CpuTile{place, std::vector<Byte>(sampleCount(place.width, place.height, ImageView::kChannels))});
        convolution.gather(place, {tile.pixels.data(), place.width, place.height});
    }
    return tiles;
}

}  // namespace

std::vector<CpuTile> computeTiles(const ConvolutionSource& source, std::atomic<int>& next, int workers) {
    return computeTilesAt(source, next, workers, platform::simdLevel());
}

std::future<std::vector<CpuTile>> startTileChore(const ConvolutionSource& source, std::atomic<int>& next) {
    // Settings and limits of the calling thread do not reach the chore's thread by themselves.
    const CallSettings* const settings = callSettings();
    const int workers = ProcessorCount();
    const platform::SimdLevel level = platform::simdLevel();
    try {
        return std::async(std::launch::async, [&source, &next, settings, workers, level] {
            const CallScope scope(settings);
            return computeTilesAt(source, next, workers, level);
        });
    } catch (const std::system_error&) {
        return {};
    }
}

void convolvePicture(const ConvolutionSource& source, const ImageView& target) {
    Convolution(source, platform::simdLevel(), ProcessorCount())
        .gather({0, 0, source.image.width, source.image.height}, target);
}

}  // namespace zellab::Bokeh
