#include "zellab/imageproc/tone/sfCurve.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <vector>

#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

namespace {

constexpr int kTableSize = static_cast<int>(ByteTable().size());

Byte saturate(std::int64_t value) {
    return static_cast<Byte>(std::clamp<std::int64_t>(value, 0, 255));
}

/// Truncation of an elimination step. The limit keeps wild points (far outside a byte) within the type.
std::int64_t truncateStep(double value) {
    return static_cast<std::int64_t>(std::clamp(value, -1e15, 1e15));
}

/// The y components of the B-spline's control points. Only they are needed: a segment's x runs evenly.
std::vector<std::int64_t> controlValues(std::span<const CurvePoint> points) {
    const int count = static_cast<int>(points.size());
    const auto y = [points](int i) { return std::int64_t{points[static_cast<std::size_t>(i)].y}; };
    std::vector<std::int64_t> b(points.size());
    const auto at = [&b](int i) -> std::int64_t& { return b[static_cast<std::size_t>(i)]; };
    at(0) = y(0);
    at(count - 1) = y(count - 1);
    if (count == 3) {
        at(1) = (6 * y(1) - y(0) - y(2)) >> 2;
        return b;
    }
    if (count < 3) return b;

    // B[i-1] + 4 B[i] + B[i+1] = 6 P[i]; the elimination truncates at every assignment.
    std::vector<double> diagonal(points.size(), 4.0);
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
    const auto sCubed = static_cast<float>(static_cast<double>(s) * s * s);
    const auto tCubed = static_cast<float>(static_cast<double>(t) * t * t);
    return sCubed * y0 + 3.0f * s * s * t * c1 + 3.0f * s * t * t * c2 + tCubed * y1;
}

}  // namespace

SFCurve::SFCurve() {
    for (auto& table : m_tables) {
        table = std::make_unique<ByteTable>();
        std::iota(table->begin(), table->end(), Byte{0});
    }
}

SFCurve::~SFCurve() = default;

void SFCurve::BuildTable(std::span<const CurvePoint> points, ByteTable& table) {
    if (points.empty()) return;
    const auto entryOf = [&table](const CurvePoint& p) {
        return table.begin() + std::clamp(p.x, 0, kTableSize);
    };
    std::fill(table.begin(), entryOf(points.front()), saturate(points.front().y));
    std::fill(entryOf(points.back()), table.end(), saturate(points.back().y));

    const std::vector<std::int64_t> b = controlValues(points);
    std::size_t position = 0;
    for (std::size_t k = 0; k + 1 < points.size(); ++k) {
        const CurvePoint &from = points[k], &to = points[k + 1];
        const auto c1 =
            static_cast<float>(static_cast<std::int64_t>(static_cast<float>(2 * b[k] + b[k + 1]) / 3.0f));
        const auto c2 =
            static_cast<float>(static_cast<std::int64_t>(static_cast<float>(b[k] + 2 * b[k + 1]) / 3.0f));
        const std::int64_t run = std::max<std::int64_t>(std::abs(std::int64_t{to.x} - from.x), 1);
        for (std::int64_t step = 0; step < run && position < table.size(); ++step, ++position) {
            const float t = static_cast<float>(step) / static_cast<float>(run);
            table[position] =
                truncateToByte(bezier(t, static_cast<float>(from.y), c1, c2, static_cast<float>(to.y)));
        }
    }
}

void SFCurve::BuildChannel(std::span<const CurvePoint> points, int channel) {
    if (channel >= 0 && channel < kChannels) BuildTable(points, *m_tables[static_cast<std::size_t>(channel)]);
}

void CurveTableThreePoints(ByteTable& table, int x, int y) {
    SFCurve::BuildTable(std::array<CurvePoint, 3>{{{0, 0}, {x, y}, {255, 255}}}, table);
}

void ApplyCurveThreePoints(ByteTable& table, int x, int y) {
    CurveTableThreePoints(table, x, y);
}

}  // namespace zellab
