#include "libzel/effects/blockEdges.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <utility>
#include <vector>

namespace zel {

namespace {

constexpr int kBlock = 8, kChannels = 4, kColours = 3;
constexpr int kReach = 3;  // pixels on either side of a border that make the slope

/// The picture's lines in one direction.
struct Lines {
    int count, length;          // lines, pixels of a line
    std::ptrdiff_t next, step;  // bytes from a line to the next, from a pixel to the next
};

std::array<Lines, 2> directions(const Image& image) {
    const std::ptrdiff_t row = std::ptrdiff_t{kChannels} * image.width;
    return {{{image.height, image.width, row, kChannels}, {image.width, image.height, kChannels, row}}};
}

void lumaRow(const unsigned char* rgba, std::vector<unsigned char>& out) {
    for (std::size_t x = 0; x < out.size(); ++x, rgba += kChannels)
        out[x] = static_cast<unsigned char>((77 * rgba[0] + 150 * rgba[1] + 29 * rgba[2]) >> 8);
}

/// The sums of the steps of luma before pixels 1, 2, ... of all lines of one direction, by the pixel's place
/// within blocks of eight that begin at 0.
using StepSums = std::array<std::uint64_t, kBlock>;

/// Those along rows, then those along columns, from one walk over the picture.
std::array<StepSums, 2> stepSums(const Image& image) {
    std::array<StepSums, 2> sums{};
    const auto width = static_cast<std::size_t>(image.width);
    std::vector<unsigned char> above(width), row(width);
    for (int y = 0; y < image.height; ++y) {
        lumaRow(image.rgba.data() + std::ptrdiff_t{y} * kChannels * image.width, row);
        std::array<std::uint32_t, kBlock> across{};
        const auto stepBefore = [&row](std::size_t x) {
            return static_cast<std::uint32_t>(std::abs(row[x] - row[x - 1]));
        };
        std::size_t x = 1;
        for (; x + kBlock <= width; x += kBlock)
            for (std::size_t k = 0; k < kBlock; ++k) across[k] += stepBefore(x + k);
        for (std::size_t k = 0; x + k < width; ++k) across[k] += stepBefore(x + k);
        for (std::size_t k = 0; k < kBlock; ++k) sums[0][(k + 1) % kBlock] += across[k];
        std::uint32_t down = 0;
        if (y > 0)
            for (x = 0; x < width; ++x) down += static_cast<std::uint32_t>(std::abs(row[x] - above[x]));
        sums[1][static_cast<std::size_t>(y % kBlock)] += down;
        std::swap(above, row);
    }
    return sums;
}

/// The mean step at the borders of blocks that begin at `offset`, less that at all other places.
double stepExcess(const StepSums& sums, const Lines& lines, int offset) {
    std::uint64_t border = 0, borders = 0, inside = 0, insides = 0;
    for (int place = 0; place < kBlock; ++place) {
        // Pixels at that place; the first one of a line has no step.
        const int pixels = (lines.length - place + kBlock - 1) / kBlock - (place == 0 ? 1 : 0);
        const bool atBorder = place == offset;
        (atBorder ? border : inside) += sums[static_cast<std::size_t>(place)];
        (atBorder ? borders : insides) +=
            static_cast<std::uint64_t>(pixels) * static_cast<std::uint64_t>(lines.count);
    }
    if (borders == 0 || insides == 0) return 0;
    return static_cast<double>(border) / static_cast<double>(borders) -
           static_cast<double>(inside) / static_cast<double>(insides);
}

/// Where the blocks begin along a direction, and how much they show.
struct Grid {
    int offset = 0;
    double excess = 0;
};

std::array<Grid, 2> findGrids(const Image& image) {
    const auto both = directions(image);
    const auto sums = stepSums(image);
    std::array<Grid, 2> grids;
    for (std::size_t d = 0; d < both.size(); ++d) {
        grids[d] = {0, stepExcess(sums[d], both[d], 0)};
        if (const int last = both[d].length % kBlock) {
            const double excess = stepExcess(sums[d], both[d], last);
            if (excess > grids[d].excess) grids[d] = {last, excess};
        }
    }
    return grids;
}

bool hasRoom(const Image& image) {
    return std::min(image.width, image.height) >= 2 * kBlock;
}

/// @param q  first pixel behind the border
void softenBorder(unsigned char* q, std::ptrdiff_t step, int largest) {
    constexpr std::array<int, kReach> kShare = {5, 3, 1};  // of 12, from the border outwards: an even slope
    const auto pixel = [&](int i) { return q + i * step; };
    int across = 0, along = 0;
    for (int c = 0; c < kColours; ++c) {
        across = std::max(across, std::abs(pixel(0)[c] - pixel(-1)[c]));
        for (int i = 1; i < kReach; ++i)
            along = std::max(
                {along, std::abs(pixel(i)[c] - pixel(i - 1)[c]), std::abs(pixel(-1 - i)[c] - pixel(-i)[c])});
    }
    if (across > largest || 2 * along > across) return;
    for (int c = 0; c < kColours; ++c) {
        const int whole = pixel(0)[c] - pixel(-1)[c];
        for (int i = 0; i < kReach; ++i) {
            const int move =
                static_cast<int>(std::lround(whole * kShare[static_cast<std::size_t>(i)] / 12.0));
            const auto moved = [&](unsigned char value, int by) {
                return static_cast<unsigned char>(std::clamp(value + by, 0, 255));
            };
            pixel(i)[c] = moved(pixel(i)[c], -move);
            pixel(-1 - i)[c] = moved(pixel(-1 - i)[c], move);
        }
    }
}

}  // namespace

double blockiness(const Image& image) {
    if (!hasRoom(image)) return 0;
    const auto grids = findGrids(image);
    return (grids[0].excess + grids[1].excess) / 2;
}

void softenBlockEdges(Image& image) {
    constexpr double kLeast = 0.5, kStepsPerExcess = 8, kLargest = 28;  // levels
    if (!hasRoom(image)) return;
    const auto both = directions(image);
    const auto grids = findGrids(image);
    const double excess = (grids[0].excess + grids[1].excess) / 2;
    if (!(excess >= kLeast)) return;
    const int largest = static_cast<int>(std::min(kStepsPerExcess * excess, kLargest));
    for (std::size_t d = 0; d < both.size(); ++d) {
        const Lines& lines = both[d];
        const int first = grids[d].offset >= kReach ? grids[d].offset : grids[d].offset + kBlock;
        for (int line = 0; line < lines.count; ++line)
            for (int i = first; i + kReach <= lines.length; i += kBlock)
                softenBorder(image.rgba.data() + line * lines.next + i * lines.step, lines.step, largest);
    }
}

}  // namespace zel
