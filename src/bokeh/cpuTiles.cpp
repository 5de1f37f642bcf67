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

std::vector<CpuTile> computeTilesAt(const ConvolutionSource& source, std::atomic<int>& next, int workers,
                                    platform::SimdLevel level) {
    const TileGrid grid(source.image.width, source.image.height);
    std::vector<CpuTile> tiles;
    int number = next.fetch_add(1);
    if (number >= grid.count()) return tiles;

    const WorkerCount count(workers);
    const KernelSet kernels = kernelsFor(source);
    const Plane<std::uint16_t> weights = weightPlane(source.image, source.look);
    const Plane<Byte> constant = constantRadius(source);
    const auto radius = source.radius.valid() ? source.radius : constant.view();
    const TileGather gather({source.image, radius, weights.view(), source.spin, &kernels,
                             std::max(source.maximumRadius, 0), source.look},
                            level, workers);
    for (; number < grid.count(); number = next.fetch_add(1)) {
        const Tile place = grid.tile(number);
        CpuTile& tile = tiles.emplace_back(
            CpuTile{place, std::vector<Byte>(sampleCount(place.width, place.height, ImageView::kChannels))});
        gather.gather(place, {tile.pixels.data(), place.width, place.height});
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

}  // namespace zellab::Bokeh
