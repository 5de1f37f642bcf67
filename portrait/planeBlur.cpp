#include "planeBlur.h"

#include <algorithm>
#include <cstddef>

#include "rowWorkers.h"

namespace zel::drawing {

namespace {

void softenRow(float* row, int width, int radius, std::vector<float>& scratch) {
    scratch.assign(row, row + width);
    const auto at = [&](int x) { return scratch[static_cast<std::size_t>(std::clamp(x, 0, width - 1))]; };
    const float scale = 1.0f / static_cast<float>(2 * radius + 1);
    float sum = 0;
    for (int x = -radius; x <= radius; ++x) sum += at(x);
    for (int x = 0; x < width; ++x) {
        row[x] = sum * scale;
        sum += at(x + radius + 1) - at(x - radius);
    }
}

/// Columns [begin, end), side by side so that memory is read along rows.
void softenColumns(const std::vector<float>& from, std::vector<float>& to, int width, int height, int radius,
                   int begin, int end) {
    const auto row = [&](int y) {
        return from.data() +
               static_cast<std::size_t>(std::clamp(y, 0, height - 1)) * static_cast<std::size_t>(width);
    };
    const float scale = 1.0f / static_cast<float>(2 * radius + 1);
    std::vector<float> sums(static_cast<std::size_t>(end - begin), 0.0f);
    for (int y = -radius; y <= radius; ++y)
        for (int x = begin; x < end; ++x) sums[static_cast<std::size_t>(x - begin)] += row(y)[x];
    for (int y = 0; y < height; ++y) {
        float* out = to.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
        const float* entering = row(y + radius + 1);
        const float* leaving = row(y - radius);
        for (int x = begin; x < end; ++x) {
            float& sum = sums[static_cast<std::size_t>(x - begin)];
            out[x] = sum * scale;
            sum += entering[x] - leaving[x];
        }
    }
}

}  // namespace

void softenPlane(std::vector<float>& plane, int width, int height, int radius) {
    if (radius < 1 || plane.empty()) return;
    // Beyond the picture's size a wider box changes nothing but the time.
    radius = std::min(radius, std::max(width, height));
    std::vector<float> other(plane.size());
    for (int pass = 0; pass < 3; ++pass) {
        forRowBands(height, [&](int begin, int end) {
            std::vector<float> scratch;
            for (int y = begin; y < end; ++y)
                softenRow(plane.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width), width,
                          radius, scratch);
        });
        forRowBands(width, [&](int begin, int end) {
            softenColumns(plane, other, width, height, radius, begin, end);
        });
        plane.swap(other);
    }
}

}  // namespace zel::drawing
