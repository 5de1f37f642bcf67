// AutoLevels: histogram stretch and lift. Declared in levels.h.
#include <algorithm>
#include <array>
#include <cstdint>
#include <mutex>
#include <optional>

#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/tone/colourHistograms.h"
#include "zellab/imageproc/tone/levels.h"

namespace zellab {

namespace {

constexpr int kWhite = 255;
/// Share of the pixels that each tail of the histogram gives up.
constexpr float kTailShare = 0.003f;
/// The stretch never starts above this level and never ends below the other.
constexpr int kHighestBlack = 60, kLowestWhite = 200;
/// Pictures with a mean below this are lifted: strongly where no channel's dark end lies below the first
/// level, weakly where every channel's dark end lies above the second.
constexpr int kDarkMean = 101, kStrongLiftBlack = 38, kWeakLiftBlack = 17;
constexpr float kStrongLift = 1.4f, kWeakLift = 1.2f;

/// What one pass over the picture counts.
struct Counts {
    ColourHistograms channels{};
    std::uint64_t pixels = 0, lumaSum = 0, lumaPixels = 0;

    void add(const Counts& other) {
        for (std::size_t c = 0; c < 3; ++c)
            for (std::size_t i = 0; i < 256; ++i) channels[c][i] += other.channels[c][i];
        pixels += other.pixels;
        lumaSum += other.lumaSum;
        lumaPixels += other.lumaPixels;
    }
};

/// Full-range luma in 1/256. Byte 0 carries the weight of blue and byte 2 that of red: the mean was always
/// taken by a routine for pixels in blue, green, red order, and the lift's threshold goes with it.
int swappedLuma(const Byte* pixel) {
    return (29 * pixel[0] + 150 * pixel[1] + 77 * pixel[2] + 128) >> 8;
}

/// The picture as samples of `channels` bytes with what restricts the count.
struct Source {
    Byte* data;
    std::ptrdiff_t stride;  // bytes
    int width, height, channels;
    PlaneView<const Byte> mask;  // not valid: all pixels count
    LevelsRegion region;         // of the mean, inside the picture

    Byte* row(int y) const { return data + y * stride; }
};

/// The region inside a picture of that size; all of it where there is none.
LevelsRegion limitedTo(int width, int height, const LevelsRegion* region) {
    if (!region) return {0, height - 1, 0, width - 1};
    return {std::max(region->top, 0), std::min(region->bottom, height - 1), std::max(region->left, 0),
            std::min(region->right, width - 1)};
}

void countMaskedRow(const Source& source, int y, Counts& counts) {
    const Byte* pixel = source.row(y);
    const Byte* const mask = source.mask.row(y);
    const bool meanRow = y >= source.region.top && y <= source.region.bottom;
    for (int x = 0; x < source.width; ++x, pixel += source.channels) {
        if (mask[x] != kWhite) continue;
        const int used = source.channels == 4 ? 3 : 1;
        for (int c = 0; c < used; ++c) ++counts.channels[static_cast<std::size_t>(c)][pixel[c]];
        ++counts.pixels;
        if (!meanRow || x < source.region.left || x > source.region.right) continue;
        counts.lumaSum += static_cast<std::uint64_t>(source.channels == 4 ? swappedLuma(pixel) : pixel[0]);
        ++counts.lumaPixels;
    }
}

std::uint64_t lumaOf(const Byte* p, int width, int channels) {
    std::uint64_t sum = 0;
    if (channels == 4)
        for (int x = 0; x < width; ++x)
            sum += static_cast<std::uint64_t>(swappedLuma(p + std::ptrdiff_t{4} * x));
    else
        for (int x = 0; x < width; ++x) sum += p[x];
    return sum;
}

void countWholeRows(const Source& source, int begin, int end, Counts& counts) {
    BandHistograms band;
    const LevelsRegion& region = source.region;
    const int meanWidth = region.left <= region.right ? region.right - region.left + 1 : 0;
    for (int y = begin; y < end; ++y) {
        const Byte* row = source.row(y);
        if (source.channels == 4)
            band.addRow<4>(row, source.width);
        else
            band.addRow<1>(row, source.width);
        counts.pixels += static_cast<std::uint64_t>(source.width);
        if (y < region.top || y > region.bottom || meanWidth == 0) continue;
        counts.lumaSum +=
            lumaOf(row + std::ptrdiff_t{source.channels} * region.left, meanWidth, source.channels);
        counts.lumaPixels += static_cast<std::uint64_t>(meanWidth);
    }
    band.addTo(counts.channels);
}

Counts count(const Source& source) {
    Counts total;
    std::mutex mutex;
    parallelRows(source.height, [&](int begin, int end) {
        Counts band;
        if (source.mask.valid())
            for (int y = begin; y < end; ++y) countMaskedRow(source, y, band);
        else
            countWholeRows(source, begin, end, band);
        const std::lock_guard<std::mutex> lock(mutex);
        total.add(band);
    });
    return total;
}

/// Where the tails of a histogram end.
struct Ends {
    int low, high;
};

Ends ends(const Histogram& histogram, std::uint64_t clip) {
    Ends result{0, kWhite};
    std::uint64_t sum = histogram[0];
    while (result.low < kWhite && sum <= clip) sum += histogram[static_cast<std::size_t>(++result.low)];
    sum = histogram[kWhite];
    while (result.high > 0 && sum <= clip) sum += histogram[static_cast<std::size_t>(--result.high)];
    return result;
}

ByteTable stretchTable(int low, int high) {
    ByteTable table;
    const float step = 255.0f / static_cast<float>(high - low);
    float value = step;  // single-precision running sum
    for (int i = 0; i <= kWhite; ++i) {
        auto& entry = table[static_cast<std::size_t>(i)];
        if (i <= low) {
            entry = 0;
        } else if (i >= high) {
            entry = kWhite;
        } else {
            entry = static_cast<Byte>(value + 0.4f);
            value += step;
        }
    }
    return table;
}

void lift(ByteTable& table, float gamma) {
    ByteTable curve;
    GammaTable(curve, gamma);
    for (auto& entry : table) entry = curve[entry];
}

/// The table of the whole step, or nothing where the picture stays as it is.
std::optional<ByteTable> levelsTable(const Counts& counts, bool isPlane) {
    if (counts.pixels == 0) return std::nullopt;
    const auto clip = static_cast<std::uint64_t>(static_cast<float>(counts.pixels) * kTailShare + 0.5f);
    int low = kHighestBlack, high = kLowestWhite, darkestEnd = kWhite;
    for (std::size_t c = 0; c < (isPlane ? 1u : 3u); ++c) {
        const Ends channel = ends(counts.channels[c], clip);
        low = std::min(low, channel.low);
        high = std::max(high, channel.high);
        darkestEnd = std::min(darkestEnd, channel.low);
    }
    if (low >= high || (isPlane && high - low == kWhite)) return std::nullopt;

    ByteTable table = stretchTable(low, high);
    const auto mean = static_cast<int>(counts.lumaSum / std::max<std::uint64_t>(counts.lumaPixels, 1));
    if (mean < kDarkMean) {
        if (darkestEnd >= kStrongLiftBlack)
            lift(table, kStrongLift);
        else if (darkestEnd > kWeakLiftBlack)
            lift(table, kWeakLift);
    }
    return table;
}

/// Moves each sample towards its table value by mask / 255.
void applyMasked(const Source& source, const ByteTable& table) {
    parallelRows(source.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            Byte* pixel = source.row(y);
            const Byte* const mask = source.mask.row(y);
            for (int x = 0; x < source.width; ++x, pixel += source.channels)
                for (int c = 0; c < (source.channels == 4 ? 3 : 1); ++c)
                    pixel[c] = static_cast<Byte>(pixel[c] + (table[pixel[c]] - pixel[c]) * mask[x] / kWhite);
        }
    });
}

/// @param map  applies a table to the whole picture
template <typename Map>
void stretch(const Source& source, const Map& map) {
    const std::optional<ByteTable> table = levelsTable(count(source), source.channels == 1);
    if (!table) return;
    if (source.mask.valid())
        applyMasked(source, *table);
    else
        map(*table);
}

}  // namespace

void AutoLevels(ImageView image, const LevelsRegion* region, PlaneView<const Byte> mask) {
    if (!image.valid()) return;
    stretch({image.data, image.stride, image.width, image.height, ImageView::kChannels, mask,
             limitedTo(image.width, image.height, region)},
            [&](const ByteTable& table) { mapPixels(image, table); });
}

void AutoLevels(PlaneView<Byte> plane, const LevelsRegion* region, PlaneView<const Byte> mask) {
    if (!plane.valid()) return;
    stretch({plane.data, plane.stride, plane.width, plane.height, 1, mask,
             limitedTo(plane.width, plane.height, region)},
            [&](const ByteTable& table) { mapPlane(plane, table); });
}

}  // namespace zellab
