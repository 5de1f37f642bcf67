#include "libzel/faces/faceDescriptor.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zel {

namespace {

/// The part of the frame that is looked at, in units about the point between the eyes.
constexpr float kLeft = -1.9f, kTop = -1.6f, kRight = 1.9f, kBottom = 2.5f;

/// Gradient, in standard deviations of the face's luma a pixel, that counts as hardly any.
constexpr float kFaintGradient = 0.02f;

/// The face made upright, as running sums of its gradients by direction.
class UprightFace {
public:
    UprightFace(const LumaPyramid& picture, const Similarity& toPicture, float pixelsPerUnit);

    /// Sums over the box [x, x + side) x [y, y + side) of one cell, added to `sums`; what lies outside is
    /// cut.
    void addCell(int x, int y, int side, float* sums) const;

private:
    void sample(const LumaPyramid& picture, const Similarity& toPicture, float pixelsPerUnit);
    void normalise();
    void sumGradients();

    int m_width, m_height;
    std::vector<float> m_luma;
    std::vector<float> m_sums;  // (height + 1) rows of (width + 1) places of kDirections sums
};

UprightFace::UprightFace(const LumaPyramid& picture, const Similarity& toPicture, float pixelsPerUnit)
    : m_width(static_cast<int>((kRight - kLeft) * pixelsPerUnit)),
      m_height(static_cast<int>((kBottom - kTop) * pixelsPerUnit)) {
    sample(picture, toPicture, pixelsPerUnit);
    normalise();
    sumGradients();
}

void UprightFace::sample(const LumaPyramid& picture, const Similarity& toPicture, float pixelsPerUnit) {
    const int level = picture.levelFor(toPicture.scale() / pixelsPerUnit);
    m_luma.reserve(static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height));
    for (int y = 0; y < m_height; ++y)
        for (int x = 0; x < m_width; ++x) {
            const auto p = toPicture({kLeft + (static_cast<float>(x) + 0.5f) / pixelsPerUnit,
                                      kTop + (static_cast<float>(y) + 0.5f) / pixelsPerUnit});
            m_luma.push_back(picture.at(level, p.x, p.y));
        }
}

/// Brings the luma of the inner face to a deviation of 1.
void UprightFace::normalise() {
    double sum = 0, squares = 0;
    int count = 0;
    for (int y = m_height / 4; y < m_height * 3 / 4; ++y)
        for (int x = m_width / 4; x < m_width * 3 / 4; ++x) {
            const double v = m_luma[static_cast<std::size_t>(y) * m_width + x];
            sum += v;
            squares += v * v;
            ++count;
        }
    const double mean = sum / count;
    const double deviation = std::sqrt(std::max(0.0, squares / count - mean * mean));
    const float factor = static_cast<float>(1.0 / std::max(deviation, 4.0));
    for (float& v : m_luma) v *= factor;
}

void UprightFace::sumGradients() {
    const auto luma = [&](int x, int y) {
        return m_luma[static_cast<std::size_t>(std::clamp(y, 0, m_height - 1)) * m_width +
                      std::clamp(x, 0, m_width - 1)];
    };
    const std::size_t rowStep = static_cast<std::size_t>(m_width + 1) * kDirections;
    m_sums.assign(rowStep * static_cast<std::size_t>(m_height + 1), 0.0f);
    constexpr float kPerRadian = kDirections / (2.0f * std::numbers::pi_v<float>);
    for (int y = 0; y < m_height; ++y) {
        float row[kDirections] = {0};
        const float* above = m_sums.data() + rowStep * static_cast<std::size_t>(y) + kDirections;
        float* here = m_sums.data() + rowStep * static_cast<std::size_t>(y + 1) + kDirections;
        for (int x = 0; x < m_width; ++x, above += kDirections, here += kDirections) {
            const float gx = 0.5f * (luma(x + 1, y) - luma(x - 1, y));
            const float gy = 0.5f * (luma(x, y + 1) - luma(x, y - 1));
            const float strength = std::sqrt(gx * gx + gy * gy);
            const float place = (std::atan2(gy, gx) + std::numbers::pi_v<float>)*kPerRadian;
            const int low = static_cast<int>(place);
            const float rest = place - static_cast<float>(low);
            row[low % kDirections] += strength * (1.0f - rest);
            row[(low + 1) % kDirections] += strength * rest;
            for (int d = 0; d < kDirections; ++d) here[d] = above[d] + row[d];
        }
    }
}

void UprightFace::addCell(int x, int y, int side, float* sums) const {
    const auto corner = [&](int cx, int cy) {
        const std::size_t place = static_cast<std::size_t>(std::clamp(cy, 0, m_height)) * (m_width + 1) +
                                  static_cast<std::size_t>(std::clamp(cx, 0, m_width));
        return m_sums.data() + place * kDirections;
    };
    const float *a = corner(x, y), *b = corner(x + side, y), *c = corner(x, y + side),
                *d = corner(x + side, y + side);
    for (int i = 0; i < kDirections; ++i) sums[i] += d[i] - b[i] - c[i] + a[i];
}

/// Shares of the whole, their roots taken so that the strongest edge does not drown the rest.
void takeShares(float* sums, int count, float faint) {
    float whole = faint;
    for (int i = 0; i < count; ++i) whole += std::max(sums[i], 0.0f);
    for (int i = 0; i < count; ++i) sums[i] = std::sqrt(std::max(sums[i], 0.0f) / whole);
}

}  // namespace

std::vector<float> describeFace(const LumaPyramid& picture, const Similarity& toPicture,
                                const Landmarks& points, const Sight& sight) {
    const UprightFace face(picture, toPicture, sight.pixelsPerUnit);
    constexpr int kPerAnchor = kCells * kCells * kDirections;
    const int side = sight.cell * kCells;
    std::vector<float> descriptor(kDescriptorSize, 0.0f);
    float* out = descriptor.data();
    for (const std::size_t anchor : kAnchors) {
        // Far-off landmarks of a lost fit read the frame's edge.
        const float px = std::clamp((points[anchor].x - kLeft) * sight.pixelsPerUnit, -1e4f, 1e4f);
        const float py = std::clamp((points[anchor].y - kTop) * sight.pixelsPerUnit, -1e4f, 1e4f);
        const int x = static_cast<int>(std::lround(px - 0.5f * static_cast<float>(side)));
        const int y = static_cast<int>(std::lround(py - 0.5f * static_cast<float>(side)));
        for (int cy = 0; cy < kCells; ++cy)
            for (int cx = 0; cx < kCells; ++cx)
                face.addCell(x + cx * sight.cell, y + cy * sight.cell, sight.cell,
                             out + (cy * kCells + cx) * kDirections);
        takeShares(out, kPerAnchor, kFaintGradient * static_cast<float>(side * side));
        out += kPerAnchor;
    }
    return descriptor;
}

}  // namespace zel
