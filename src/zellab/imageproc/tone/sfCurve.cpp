#include "zellab/imageproc/tone/sfCurve.h"

#include <algorithm>
#include <cstdint>
#include <new>
#include <vector>

#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

namespace {

constexpr int kTableSize = 256;

unsigned char saturate(std::int64_t value) {
    return static_cast<unsigned char>(std::clamp<std::int64_t>(value, 0, 255));
}

/// Truncation of an elimination step. The limit keeps wild points (far outside a byte) within the type.
std::int64_t truncateStep(double value) {
    return static_cast<std::int64_t>(std::clamp(value, -1e15, 1e15));
}

/// The y components of the B-spline's control points. Only they are needed: a segment's x runs evenly.
std::vector<std::int64_t> controlValues(const int* points, int count) {
    const auto y = [points](int i) { return std::int64_t{points[2 * std::ptrdiff_t{i} + 1]}; };
    std::vector<std::int64_t> b(static_cast<std::size_t>(count));
    const auto at = [&b](int i) -> std::int64_t& { return b[static_cast<std::size_t>(i)]; };
    at(0) = y(0);
    at(count - 1) = y(count - 1);
    if (count == 3) {
        at(1) = (6 * y(1) - y(0) - y(2)) >> 2;
        return b;
    }
    if (count < 3) return b;

    // B[i-1] + 4 B[i] + B[i+1] = 6 P[i]; the elimination truncates at every assignment.
    std::vector<double> diagonal(static_cast<std::size_t>(count), 4.0);
    for (int i = 1; i < count - 1; ++i) at(i) = 6 * y(i);
    at(1) -= y(0);
    at(count - 2) -= y(count - 1);
    for (int i = 2; i < count - 1; ++i) {
        const auto k = static_cast<std::size_t>(i);
        const double l = 1.0 / diagonal[k - 1];
        diagonal[k] -= l;
        at(i) = truncateStep(static_cast<double>(b[k]) - static_cast<double>(b[k - 1]) * l);
    }
    at(count - 2) =
        truncateStep(static_cast<double>(at(count - 2)) / diagonal[static_cast<std::size_t>(count - 2)]);
    for (int i = count - 3; i > 0; --i) {
        const auto k = static_cast<std::size_t>(i);
        at(i) = truncateStep(static_cast<double>(b[k] - b[k + 1]) / diagonal[k]);
    }
    return b;
}

/// One Bezier segment, end values y0 and y1, inner control values c1 and c2. Single precision.
float bezier(float t, float y0, float c1, float c2, float y1) {
    const float s = 1.0f - t;
    const float sCubed = static_cast<float>(static_cast<double>(s) * s * s);
    const float tCubed = static_cast<float>(static_cast<double>(t) * t * t);
    return sCubed * y0 + 3.0f * s * s * t * c1 + 3.0f * s * t * t * c2 + tCubed * y1;
}

}  // namespace

SFCurve::SFCurve() {
    for (auto& table : m_tables) {
        table.reset(static_cast<unsigned char*>(std::malloc(kTableSize)));
        if (!table) throw std::bad_alloc();
        for (int i = 0; i < kTableSize; ++i) table.get()[i] = static_cast<unsigned char>(i);
    }
}

SFCurve::~SFCurve() = default;

void SFCurve::BuildTable(const int* points, int count, unsigned char* table) {
    if (!points || !table || count < 1) return;
    const auto x = [points](int i) { return points[2 * std::ptrdiff_t{i}]; };
    const auto y = [points](int i) { return points[2 * std::ptrdiff_t{i} + 1]; };
    std::fill_n(table, std::clamp(x(0), 0, kTableSize), saturate(y(0)));
    const int last = std::clamp(x(count - 1), 0, kTableSize);
    std::fill_n(table + last, kTableSize - last, saturate(y(count - 1)));

    const std::vector<std::int64_t> b = controlValues(points, count);
    int position = 0;
    for (int i = 0; i < count - 1; ++i) {
        const auto k = static_cast<std::size_t>(i);
        const float c1 =
            static_cast<float>(static_cast<std::int64_t>(static_cast<float>(2 * b[k] + b[k + 1]) / 3.0f));
        const float c2 =
            static_cast<float>(static_cast<std::int64_t>(static_cast<float>(b[k] + 2 * b[k + 1]) / 3.0f));
        const std::int64_t run =
            std::max<std::int64_t>(std::abs(std::int64_t{x(i + 1)} - std::int64_t{x(i)}), 1);
        for (std::int64_t step = 0; step < run && position < kTableSize; ++step, ++position) {
            const float t = static_cast<float>(step) / static_cast<float>(run);
            table[position] =
                truncateToByte(bezier(t, static_cast<float>(y(i)), c1, c2, static_cast<float>(y(i + 1))));
        }
    }
}

void SFCurve::BuildChannel(const int* points, int count, int channel) {
    if (channel >= 0 && channel < kChannels) BuildTable(points, count, m_tables[channel].get());
}

void CurveTableThreePoints(unsigned char* table, int x, int y) {
    const int points[] = {0, 0, x, y, 255, 255};
    SFCurve::BuildTable(points, 3, table);
}

void ApplyCurveThreePoints(unsigned char* table, int x, int y) {
    CurveTableThreePoints(table, x, y);
}

}  // namespace zellab
