#include "libzel/effects/keptMoles.h"

#include <algorithm>
#include <cmath>

#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/masks/regionLabelling.h"

namespace zel {

namespace {

using zellab::Byte;

/// Where the repair made green lighter by more than this share, there was a fleck.
constexpr float kSpotDepth = 0.12f;

// What a mole has to be. Depths are shares by which it is darker than the repaired skin, in its darkest quarter.
constexpr float kLeastGreenDepth = 0.24f, kLeastRedDepth = 0.14f;
constexpr float kLeastRedOfGreen = 0.45f;  // a pimple is hardly darker in red
constexpr float kLeastDiameter = 0.018f;   // of the pupils' distance
constexpr float kMostLong = 1.9f;          // its box's longer side against the shorter one
constexpr float kLeastFill = 0.5f;         // its share of the box; a disc has 0.79

/// Around a mole as much is put back; further out the repair comes back by degrees.
constexpr float kWhole = 1.5f, kFaded = 2.3f;  // of its radius

struct Fleck {
    std::vector<float> green, red;  // depths
    zellab::RegionBox box;
};

/// The mean of the greatest quarter.
float darkest(std::vector<float> depths) {
    const std::size_t count = std::max<std::size_t>(depths.size() / 4, 1);
    std::partial_sort(depths.begin(), depths.begin() + static_cast<std::ptrdiff_t>(count), depths.end(),
                      std::greater<>());
    float sum = 0;
    for (std::size_t i = 0; i < count; ++i) sum += depths[i];
    return sum / static_cast<float>(count);
}

float depthOf(Byte before, Byte after) {
    return static_cast<float>(after - before) / std::max(static_cast<float>(after), 1.0f);
}

float diameterOf(const Fleck& fleck) {
    constexpr float kPi = 3.14159265f;
    return 2 * std::sqrt(static_cast<float>(fleck.green.size()) / kPi);
}

bool isMole(const Fleck& fleck, float pupils) {
    const float green = darkest(fleck.green), red = darkest(fleck.red);
    const int across = fleck.box.right - fleck.box.left + 1, down = fleck.box.bottom - fleck.box.top + 1;
    const int shorter = std::min(across, down), longer = std::max(across, down);
    const auto area = static_cast<float>(fleck.green.size());
    return green >= kLeastGreenDepth && red >= kLeastRedDepth && red >= kLeastRedOfGreen * green &&
           diameterOf(fleck) >= kLeastDiameter * pupils &&
           static_cast<float>(longer) <= kMostLong * static_cast<float>(shorter) &&
           area >= kLeastFill * static_cast<float>(shorter * longer);
}

void putBack(Image& repaired, const Image& before, const Fleck& fleck) {
    const float x0 = 0.5f * static_cast<float>(fleck.box.left + fleck.box.right),
                y0 = 0.5f * static_cast<float>(fleck.box.top + fleck.box.bottom);
    const float radius = 0.5f * std::max(diameterOf(fleck), 2.0f);
    const int reach = static_cast<int>(kFaded * radius) + 1;
    const auto limit = [](float v, int most) { return std::clamp(static_cast<int>(v), 0, most); };
    const int top = limit(y0 - static_cast<float>(reach), repaired.height - 1),
              bottom = limit(y0 + static_cast<float>(reach), repaired.height - 1),
              left = limit(x0 - static_cast<float>(reach), repaired.width - 1),
              right = limit(x0 + static_cast<float>(reach), repaired.width - 1);
    for (int y = top; y <= bottom; ++y)
        for (int x = left; x <= right; ++x) {
            const float away = std::hypot(static_cast<float>(x) - x0, static_cast<float>(y) - y0) / radius;
            const float share = std::clamp((kFaded - away) / (kFaded - kWhole), 0.0f, 1.0f);
            const std::size_t i =
                4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(repaired.width) +
                     static_cast<std::size_t>(x));
            for (std::size_t c = i; c < i + 3; ++c) {
                const auto from = static_cast<float>(repaired.rgba[c]),
                           to = static_cast<float>(before.rgba[c]);
                repaired.rgba[c] = static_cast<Byte>(from + (to - from) * share + 0.5f);
            }
        }
}

}  // namespace

void putBackMoles(Image& repaired, const Image& before, float pupils) {
    const int width = repaired.width, height = repaired.height;
    zellab::Plane<Byte> spotted(width, height);
    zellab::Plane<int> labels(width, height);
    for (std::size_t i = 0; i < spotted.size(); ++i)
        spotted.data()[i] = depthOf(before.rgba[4 * i + 1], repaired.rgba[4 * i + 1]) > kSpotDepth ? 255 : 0;
    const auto boxes = zellab::LabelConnectedRuns(spotted.view(), labels.view());
    std::vector<Fleck> flecks(boxes.size());
    for (std::size_t k = 0; k < boxes.size(); ++k) flecks[k].box = boxes[k];
    for (std::size_t i = 0; i < labels.size(); ++i) {
        if (labels.data()[i] == 0) continue;
        Fleck& fleck = flecks[static_cast<std::size_t>(labels.data()[i]) - 1];
        fleck.green.push_back(depthOf(before.rgba[4 * i + 1], repaired.rgba[4 * i + 1]));
        fleck.red.push_back(depthOf(before.rgba[4 * i], repaired.rgba[4 * i]));
    }
    for (const Fleck& fleck : flecks)
        if (isMole(fleck, pupils)) putBack(repaired, before, fleck);
}

}  // namespace zel
