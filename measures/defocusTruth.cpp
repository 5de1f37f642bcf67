#include "defocusTruth.h"

#include <array>
#include <cmath>

#include "bokeh/focusDecision.h"
#include "bokeh/radiusMap.h"
#include "portrait/background.h"
#include "portrait/develop.h"
#include "portrait/sitter.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zelmeasures {

namespace {

using zellab::Byte;

/// Full-size radii of the blur by disparity, in pixels, as the effect decides them.
std::array<int, 256> radiiOf(const LayeredPortrait& layers, int blurLevel) {
    using namespace zellab::Bokeh;
    const int width = layers.portrait.image.width, height = layers.portrait.image.height;
    DisparityMap map;
    map.set({layers.disparity.data(), width, height});
    BlurStrength strength = computeBlurStrength(width, height, 1.0f, blurLevel, true);
    const FaceBox face = faceBoxOf(layers.portrait);
    const FocusPoint point{face.centreY(), face.centreX()};
    const FocusBand band = decideFocus(map, {point}, point, strength);
    const RadiusTables tables = radiiByDepth(map, band, strength);
    std::array<int, 256> radii;
    for (int i = 0; i < 256; ++i) {
        const int clipped = std::clamp(i, map.minimum(), map.maximum());
        radii[static_cast<std::size_t>(i)] = static_cast<int>(std::lround(
            static_cast<float>(tables.working[static_cast<std::size_t>(clipped)]) * strength.ratio));
    }
    return radii;
}

/// Sums of a row's samples from its left end.
using RowSums = std::vector<std::uint32_t>;
RowSums sumsOf(const Byte* plane, int width, int channels) {
    RowSums sums(static_cast<std::size_t>((width + 1) * channels), 0);
    for (int i = 0; i < width * channels; ++i)
        sums[static_cast<std::size_t>(i + channels)] = sums[static_cast<std::size_t>(i)] + plane[i];
    return sums;
}

/// The mean of the background over the disc around a pixel.
void discMean(const std::vector<RowSums>& sums, int width, int height, int x, int y, int radius, Byte* out) {
    std::array<std::uint64_t, 3> total{};
    std::uint64_t count = 0;
    for (int row = std::max(y - radius, 0); row <= std::min(y + radius, height - 1); ++row) {
        const double dy = row - y, r = radius + 0.5;
        const int half = static_cast<int>(std::sqrt(r * r - dy * dy));
        const int left = std::max(x - half, 0), right = std::min(x + half, width - 1) + 1;
        const RowSums& line = sums[static_cast<std::size_t>(row)];
        for (std::size_t c = 0; c < 3; ++c)
            total[c] +=
                line[static_cast<std::size_t>(4 * right) + c] - line[static_cast<std::size_t>(4 * left) + c];
        count += static_cast<std::uint64_t>(right - left);
    }
    for (std::size_t c = 0; c < 3; ++c) out[c] = static_cast<Byte>((total[c] + count / 2) / count);
}

}  // namespace

LayeredPortrait drawLayers(const zel::PortraitParams& params) {
    using namespace zel::drawing;
    LayeredPortrait layers;
    layers.portrait = zel::drawPortrait(params);
    const Sitter sitter = resolveSitter(params);
    const Scene scene = resolveScene(params, sitter);
    const Background background(scene);
    const Developer developer(scene);
    const std::size_t pixels = layers.portrait.depth.size();
    layers.background.resize(4 * pixels);
    layers.disparity.resize(pixels);
    layers.backDisparity.resize(pixels);
    const auto byteOf = [](float depth) { return static_cast<Byte>(std::lround(depth * 255)); };
    zellab::parallelRows(params.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < params.width; ++x) {
                const auto i = static_cast<std::size_t>(y) * static_cast<std::size_t>(params.width) +
                               static_cast<std::size_t>(x);
                developer.develop(background.colourAt(x, y), x, y, &layers.background[4 * i]);
                layers.backDisparity[i] = byteOf(background.depthAt(x, y));
                layers.disparity[i] = byteOf(layers.portrait.depth[i]);
            }
    });
    return layers;
}

FaceBox faceBoxOf(const zel::Portrait& portrait) {
    FaceBox box;
    for (std::size_t i = 0; i < 4; ++i)
        box.values[i] = static_cast<float>(portrait.faces.faces.front().rect[i]);
    return box;
}

Rgba trueDefocus(const LayeredPortrait& layers, int blurLevel) {
    const int width = layers.portrait.image.width, height = layers.portrait.image.height;
    const std::array<int, 256> radii = radiiOf(layers, blurLevel);
    std::vector<RowSums> sums(static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y)
        sums[static_cast<std::size_t>(y)] = sumsOf(
            &layers
                 .background[std::size_t{4} * static_cast<std::size_t>(width) * static_cast<std::size_t>(y)],
            width, 4);
    Rgba result = layers.portrait.image.rgba;
    zellab::parallelRows(height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < width; ++x) {
                const auto i = static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                               static_cast<std::size_t>(x);
                const int cover = layers.portrait.person.samples[i];
                if (cover == 255) continue;
                std::array<Byte, 3> soft;
                discMean(sums, width, height, x, y, radii[layers.backDisparity[i]], soft.data());
                // What shines through the person's coverage changes from the sharp to the blurred background.
                for (std::size_t c = 0; c < 3; ++c) {
                    const int change = (255 - cover) * (soft[c] - layers.background[4 * i + c]) / 255;
                    result[4 * i + c] = static_cast<Byte>(std::clamp(result[4 * i + c] + change, 0, 255));
                }
            }
    });
    return result;
}

}  // namespace zelmeasures
