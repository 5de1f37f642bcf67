#include "gimp/dialog/viewPixels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace zelgimp {

namespace {

/// Of a reduced picture so many samples a side are read for one pixel: more are not seen.
constexpr int kMostSamples = 4;
/// The ground of what is transparent.
constexpr int kSquare = 8, kLight = 153, kDark = 102;

/// The picture's columns or rows that one screen pixel reads, [begin, end) by a step.
struct Reach {
    int begin, end, step;
};

std::vector<Reach> reaches(int count, double start, double zoom, int length) {
    std::vector<Reach> list;
    list.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const int begin = static_cast<int>(std::floor(start + i / zoom));
        const int beyond = std::max(begin + 1, static_cast<int>(std::floor(start + (i + 1) / zoom)));
        if (begin < 0 || begin >= length)
            list.push_back({0, 0, 1});
        else
            list.push_back({begin, std::min(beyond, length), std::max(1, (beyond - begin) / kMostSamples)});
    }
    return list;
}

/// The mean of the samples, colour by its share of alpha, on the chequered ground.
std::uint32_t meanOn(const Rgba& picture, const Reach& across, const Reach& down, int ground) {
    unsigned colour[3] = {}, alpha = 0, count = 0;
    for (int y = down.begin; y < down.end; y += down.step)
        for (int x = across.begin; x < across.end; x += across.step) {
            const unsigned char* const p = picture.at(x, y);
            for (int c = 0; c < 3; ++c) colour[c] += unsigned{p[c]} * p[3];
            alpha += p[3];
            ++count;
        }
    std::uint32_t pixel = 0xff;
    const unsigned whole = 255 * count;
    for (const unsigned sum : colour)
        pixel = pixel << 8 | (sum + static_cast<unsigned>(ground) * (whole - alpha) + whole / 2) / whole;
    return pixel;
}

}  // namespace

std::vector<std::uint32_t> viewPixels(const Rgba& picture, const ViewMap& map, std::uint32_t outside) {
    const Spot corner = map.toPicture({0, 0});
    const int width = map.viewWidth(), height = map.viewHeight();
    const std::vector<Reach> across = reaches(width, corner.x, map.zoom(), picture.width);
    const std::vector<Reach> down = reaches(height, corner.y, map.zoom(), picture.height);
    std::vector<std::uint32_t> pixels;
    pixels.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (std::size_t y = 0; y < down.size(); ++y)
        for (std::size_t x = 0; x < across.size(); ++x) {
            const bool isInside = down[y].begin < down[y].end && across[x].begin < across[x].end;
            const int ground = (x / kSquare + y / kSquare) % 2 == 0 ? kLight : kDark;
            pixels.push_back(isInside ? meanOn(picture, across[x], down[y], ground) : outside);
        }
    return pixels;
}

}  // namespace zelgimp
