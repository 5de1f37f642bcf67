#include "libzel/effects/blockEdges.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>

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

int luma(const unsigned char* p) {
    return (77 * p[0] + 150 * p[1] + 29 * p[2]) >> 8;
}

/// The mean step at the borders of blocks that begin at `offset`, less that at all other places.
double stepExcess(const Image& image, const Lines& lines, int offset) {
    double border = 0, borders = 0, inside = 0, insides = 0;
    for (int line = 0; line < lines.count; ++line) {
        const unsigned char* p = image.rgba.data() + line * lines.next;
        for (int i = 1; i < lines.length; ++i, p += lines.step) {
            const int step = std::abs(luma(p) - luma(p + lines.step));
            if ((i - offset) % kBlock == 0) {
                border += step, ++borders;
            } else {
                inside += step, ++insides;
            }
        }
    }
    return borders > 0 && insides > 0 ? border / borders - inside / insides : 0;
}

/// Where the blocks begin along a direction, and how much they show.
struct Grid {
    int offset = 0;
    double excess = 0;
};

Grid findGrid(const Image& image, const Lines& lines) {
    Grid grid{0, stepExcess(image, lines, 0)};
    if (const int last = lines.length % kBlock) {
        const double excess = stepExcess(image, lines, last);
        if (excess > grid.excess) grid = {last, excess};
    }
    return grid;
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
    const auto both = directions(image);
    return (findGrid(image, both[0]).excess + findGrid(image, both[1]).excess) / 2;
}

void softenBlockEdges(Image& image) {
    constexpr double kLeast = 0.5, kStepsPerExcess = 8, kLargest = 28;  // levels
    if (!hasRoom(image)) return;
    const auto both = directions(image);
    const Grid grids[2] = {findGrid(image, both[0]), findGrid(image, both[1])};
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
