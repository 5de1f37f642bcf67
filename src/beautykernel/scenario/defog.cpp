#include "beautykernel/scenario/defog.h"

#include <array>
#include <cstdint>
#include <mutex>

#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/tone/colourHistograms.h"
#include "zellab/imageproc/tone/toneTables.h"

namespace zellab {

namespace {

constexpr float kClippedShare = 0.005f;  // of the pixels, at either end
constexpr int kLow = 0, kHigh = 255;     // output range

ColourHistograms histograms(ConstImageView image) {
    ColourHistograms counts{};
    std::mutex mutex;
    parallelRows(image.height, [&](int begin, int end) {
        BandHistograms band;
        for (int y = begin; y < end; ++y) band.addRow<4>(image.row(y), image.width);
        const std::lock_guard<std::mutex> lock(mutex);
        band.addTo(counts);
    });
    return counts;
}

/// The values between which a channel is stretched.
struct Bounds {
    int lower, upper;
};

Bounds occupiedBounds(const Histogram& counts) {
    Bounds bounds{0, 255};
    while (counts[static_cast<std::size_t>(bounds.lower)] == 0) ++bounds.lower;
    while (counts[static_cast<std::size_t>(bounds.upper)] == 0) --bounds.upper;
    return bounds;
}

Bounds clippedBounds(const Histogram& counts, std::uint64_t pixels, std::uint64_t clip) {
    Histogram upTo{};
    std::uint64_t sum = 0;
    for (std::size_t v = 0; v < upTo.size(); ++v) upTo[v] = sum += counts[v];
    Bounds bounds{0, 255};
    while (upTo[static_cast<std::size_t>(bounds.lower)] <= clip) ++bounds.lower;
    while (bounds.upper >= 0 && upTo[static_cast<std::size_t>(bounds.upper)] > pixels - clip) --bounds.upper;
    if (bounds.upper != 255) ++bounds.upper;
    return bounds;
}

ByteTable stretchTable(const Bounds& bounds) {
    ByteTable table;
    if (bounds.upper <= bounds.lower) {
        table.fill((kLow + kHigh) / 2);
        return table;
    }
    const float slope = static_cast<float>(kHigh - kLow) / static_cast<float>(bounds.upper - bounds.lower);
    for (int v = 0; v < 256; ++v)
        table[static_cast<std::size_t>(v)] = static_cast<Byte>(
            v < bounds.lower ? kLow
            : v >= bounds.upper
                ? kHigh
                : static_cast<int>(static_cast<float>(v - bounds.lower) * slope + static_cast<float>(kLow)));
    return table;
}

ByteTable channelTable(const Histogram& counts, std::uint64_t pixels, std::uint64_t clip) {
    if (2 * clip >= pixels) clip = (pixels - 1) / 2;
    return stretchTable(clip == 0 ? occupiedBounds(counts) : clippedBounds(counts, pixels, clip));
}

}  // namespace

void defog(ImageView image) {
    if (!image.valid()) return;
    const auto pixels = static_cast<std::uint64_t>(sampleCount(image.width, image.height));
    const auto clip = static_cast<std::uint64_t>(static_cast<float>(image.width) *
                                                 static_cast<float>(image.height) * kClippedShare);
    std::array<ByteTable, 3> tables;
    const ColourHistograms counts = histograms(image);
    for (std::size_t c = 0; c < tables.size(); ++c) tables[c] = channelTable(counts[c], pixels, clip);
    mapPixels(image, ChannelTables{tables[0], tables[1], tables[2]});
}

}  // namespace zellab
