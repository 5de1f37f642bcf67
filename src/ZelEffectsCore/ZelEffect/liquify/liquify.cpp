#include "ZelEffectsCore/ZelEffect/liquify/liquify.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/resample/cubicSample.h"

namespace zellab {

namespace {

/// The brush's profile is raised to this power: a wider top than the plain cosine.
constexpr double kFalloffPower = 0.7;
/// Share of an offset that one bulge or pinch of full strength moves.
constexpr double kBulgeShare = 0.1;
/// Share of an offset that a twirl moves, and of the field that a restore removes.
constexpr float kTwirlShare = 0.5f, kRestoreShare = 0.5f;

enum Mode { kBulge = 0, kPinch = 1, kPush = 2, kRestore = 3, kTwirl = 4, kCounterTwirl = 5 };

/// Where a range [first, last] meets 0..size - 1, as its start and length. In 64 bits: a radius may be as
/// large as an int.
std::pair<int, int> cut(std::int64_t first, std::int64_t last, int size) {
    first = std::clamp<std::int64_t>(first, 0, size);
    last = std::clamp<std::int64_t>(last, -1, size - 1);
    return {static_cast<int>(first), static_cast<int>(std::max<std::int64_t>(last - first + 1, 0))};
}

/// Largest k with k * k < square, for square above 0.
std::int64_t rootBelow(std::int64_t square) {
    auto k = static_cast<std::int64_t>(std::sqrt(static_cast<double>(square)));
    while (k * k >= square) --k;
    while ((k + 1) * (k + 1) < square) ++k;
    return k;
}

}  // namespace

void CLiquify::apply(int x1, int y1, int x2, int y2, int mode) {
    if (m_strength == 0.0f || m_radius < 1 || !m_image.valid()) return;
    const auto inside = [](int v, int size) { return v >= 0 && v < size; };
    if (!inside(x1, m_image.width) || !inside(x2, m_image.width)) return;
    if (!inside(y1, m_image.height) || !inside(y2, m_image.height)) return;
    m_strokeStrength = std::fabs(m_strength);
    m_mode = m_strength < 0.0f ? static_cast<int>(kPinch) : mode;
    buildFactors();
    if (m_mode == kPush) {
        applyPath(x1, y1, x2, y2);
    } else {
        applyOnce(x1, y1);
    }
    draw();
}

/// By which share of its offset from the brush a cell may read outside its own place.
double CLiquify::outwardShare() const {
    switch (m_mode) {
        case kPinch:
            return kBulgeShare;
        case kTwirl:
        case kCounterTwirl:
            return static_cast<double>(kTwirlShare);
        default:
            return 0.0;
    }
}

/// falloff[i] = ((cos(sqrt(i / radius) * pi) + 1) / 2) ^ 0.7, and with it the factor of the mode, in the
/// precision of each. Only as far as an offset inside the picture can reach, so that a radius beyond the
/// picture costs nothing.
void CLiquify::buildFactors() {
    const std::int64_t dx = m_image.width - 1, dy = m_image.height - 1;
    const auto entries = std::min<std::int64_t>(m_radius, (dx * dx + dy * dy) / m_radius + 1);
    m_factors.resize(static_cast<std::size_t>(entries));
    for (std::size_t i = 0; i < m_factors.size(); ++i) {
        const float share = static_cast<float>(i) / static_cast<float>(m_radius);
        const double cosine = std::cos(std::sqrt(static_cast<double>(share)) * std::numbers::pi);
        const auto falloff = static_cast<float>(std::pow((cosine + 1.0) * 0.5, kFalloffPower));
        float& factor = m_factors[i];
        switch (m_mode) {
            case kBulge:
            case kPinch:
                factor = static_cast<float>(static_cast<double>(falloff) * kBulgeShare *
                                            static_cast<double>(m_strokeStrength));
                break;
            case kRestore:
                factor = 1.0f - falloff * m_strokeStrength * kRestoreShare;
                break;
            case kTwirl:
            case kCounterTwirl:
                factor = falloff * m_strokeStrength * kTwirlShare;
                break;
            default:
                factor = falloff * m_strokeStrength;
        }
    }
}

void CLiquify::applyOnce(int x, int y) {
    // What the cells read, with the taps beside it. A strength above 100 may reach farther: then the taps are
    // clamped to twice the radius.
    constexpr std::int64_t kTaps = 3;
    const std::int64_t r = m_radius;
    const std::int64_t reach =
        m_strokeStrength > 1.0f
            ? 2 * r
            : std::min(2 * r, r + static_cast<std::int64_t>(outwardShare() * m_radius) + kTaps);
    const auto [left, width] = cut(x - r, x + r, m_image.width);
    const auto [top, height] = cut(y - r, y + r, m_image.height);
    const auto [snapLeft, snapWidth] = cut(x - reach, x + reach, m_image.width);
    const auto [snapTop, snapHeight] = cut(y - reach, y + reach, m_image.height);
    prepare({left, top, width, height}, {snapLeft, snapTop, snapWidth, snapHeight});
    runStep({x, y, {}});
}

void CLiquify::applyPath(int x1, int y1, int x2, int y2) {
    const auto dx = static_cast<float>(x1 - x2), dy = static_cast<float>(y1 - y2);
    const float length = std::sqrt(dx * dx + dy * dy);
    // The brush advances half a radius a step; the start itself is no brush position.
    const int steps = 1 - static_cast<int>(static_cast<double>(length) * -2.0 / m_radius);
    const float stepX = dx / static_cast<float>(steps), stepY = dy / static_cast<float>(steps);
    float x = static_cast<float>(x2) + stepX, y = static_cast<float>(y2) + stepY;

    struct Axis {
        int fieldStart, fieldSize, snapStart, snapSize;
    };
    const auto axisOf = [&](float start, float step, int size) {
        const auto travel = static_cast<std::int64_t>(static_cast<float>(steps - 1) * std::fabs(step));
        const std::int64_t low = static_cast<int>(start) - (step < 0.0f ? travel : 0) - m_radius;
        const std::int64_t high = low + travel + 2 * std::int64_t{m_radius};
        const auto [fieldStart, fieldSize] = cut(low, high, size);
        const auto [snapStart, snapSize] = cut(low - 1, high + 2, size);
        return Axis{fieldStart, fieldSize, snapStart, snapSize};
    };
    const Axis h = axisOf(x, stepX, m_image.width), v = axisOf(y, stepY, m_image.height);
    prepare({h.fieldStart, v.fieldStart, h.fieldSize, v.fieldSize},
            {h.snapStart, v.snapStart, h.snapSize, v.snapSize});
    for (int i = 0; i < steps; ++i) {
        runStep({static_cast<int>(x), static_cast<int>(y), {-stepX, -stepY}});
        x += stepX;
        y += stepY;
    }
}

void CLiquify::prepare(const Area& field, const Area& snapshot) {
    m_fieldArea = field;
    m_field = Plane<Vector2f>(field.width, field.height);
    m_fieldEmpty = true;
    m_snapshotArea = snapshot;
    m_snapshot.resize(sampleCount(snapshot.width, snapshot.height, ImageView::kChannels));
    const ImageView copy(m_snapshot.data(), snapshot.width, snapshot.height);
    const ImageView window = m_image.crop(snapshot.left, snapshot.top, snapshot.width, snapshot.height);
    for (int y = 0; y < copy.height; ++y)
        std::memcpy(copy.row(y), window.row(y), static_cast<std::size_t>(copy.stride));
}

/// One step: every cell of the disc reads the field as it was before the step, so the new values wait in
/// m_stepField until all are made; an empty field is not read. Cells outside the field's area (a long path of tiny steps may drift there
/// by rounding) are left out.
void CLiquify::runStep(const Step& step) {
    struct Row {
        int y, left, width;
    };
    std::vector<Row> rows;
    std::size_t cells = 0;
    const std::int64_t r = m_radius;
    const int bottom = m_fieldArea.top + m_fieldArea.height;
    for (int y = m_fieldArea.top; y < bottom; ++y) {
        const std::int64_t dy = y - step.y;
        if (dy * dy >= r * r) continue;
        const std::int64_t reach = rootBelow(r * r - dy * dy);
        const std::int64_t first = std::max<std::int64_t>(step.x - reach, m_fieldArea.left);
        const std::int64_t last =
            std::min<std::int64_t>(step.x + reach, m_fieldArea.left + m_fieldArea.width - 1);
        if (last < first) continue;
        rows.push_back({y, static_cast<int>(first), static_cast<int>(last - first + 1)});
        cells += static_cast<std::size_t>(rows.back().width);
    }
    const auto cellsOf = [this](const Row& row) {
        return m_field.view().row(row.y - m_fieldArea.top) + row.left - m_fieldArea.left;
    };
    if (m_fieldEmpty) {
        for (const Row& row : rows) runStepRow(step, row.y, row.left, row.width, cellsOf(row));
        m_fieldEmpty = false;
        return;
    }
    m_stepField.resize(cells);
    Vector2f* next = m_stepField.data();
    for (const Row& row : rows) {
        runStepRow(step, row.y, row.left, row.width, next);
        next += row.width;
    }
    const Vector2f* made = m_stepField.data();
    for (const Row& row : rows) {
        std::copy_n(made, row.width, cellsOf(row));
        made += row.width;
    }
}

void CLiquify::runStepRow(const Step& step, int y, int left, int width, Vector2f* out) const {
    const std::int64_t r = m_radius, dy = y - step.y;
    std::int64_t dx = left - step.x;
    // index = (dx^2 + dy^2) / r, carried along the row with its remainder.
    std::int64_t index = (dx * dx + dy * dy) / r, rest = (dx * dx + dy * dy) % r;
    const auto eachCell = [&](const auto& displacement) {
        for (int i = 0; i < width; ++i, ++dx) {
            out[i] =
                displacement(left + i, static_cast<float>(dx), m_factors[static_cast<std::size_t>(index)]);
            rest += 2 * dx + 1;
            while (rest >= r) rest -= r, ++index;
            while (rest < 0) rest += r, --index;
        }
    };
    // Adds what the stroke changes, kept inside the picture.
    const auto eachChange = [&](const auto& change) {
        eachCell([&](int x, float across, float factor) {
            const Vector2f d = change(across, factor);
            if (m_fieldEmpty) return keptInside(d, x, y);
            const Vector2f b = fieldAt(static_cast<float>(x - m_fieldArea.left) + d.x,
                                       static_cast<float>(y - m_fieldArea.top) + d.y);
            return keptInside({b.x + d.x, b.y + d.y}, x, y);
        });
    };
    const auto down = static_cast<float>(dy);
    switch (m_mode) {
        case kBulge:
            return eachChange([=](float x, float f) { return Vector2f{-x * f, -down * f}; });
        case kPinch:
            return eachChange([=](float x, float f) { return Vector2f{x * f, down * f}; });
        case kPush:
            return eachChange([&](float, float f) { return Vector2f{step.vector.x * f, step.vector.y * f}; });
        case kRestore:
            return eachCell([&](int x, float, float keep) {
                const Vector2f u = fieldAt(static_cast<float>(x - m_fieldArea.left),
                                           static_cast<float>(y - m_fieldArea.top));
                return Vector2f{u.x * keep, u.y * keep};
            });
        case kTwirl:
            return eachChange([=](float x, float f) { return Vector2f{-down * f, x * f}; });
        case kCounterTwirl:
            return eachChange([=](float x, float f) { return Vector2f{down * f, -x * f}; });
        default:
            return eachChange([](float, float) { return Vector2f{}; });
    }
}

/// Bilinear value of the field. The upper limit is one cell early, and a field of a single row or column has
/// no second one: the lone cell then stands for both.
Vector2f CLiquify::fieldAt(float x, float y) const {
    struct Cell {
        int low, high;
        float share;
    };
    const auto cellOf = [](float position, int size) {
        if (!(position > 0.0f)) position = 0.0f;
        if (position >= static_cast<float>(size - 1)) position = static_cast<float>(std::max(size - 2, 0));
        const int low = static_cast<int>(position);
        return Cell{low, std::min(low + 1, size - 1), position - static_cast<float>(low)};
    };
    const Cell h = cellOf(x, m_field.width()), v = cellOf(y, m_field.height());
    const Vector2f* upper = m_field.view().row(v.low);
    const Vector2f* lower = m_field.view().row(v.high);
    const auto axis = [&](float Vector2f::*c) {
        const float above = upper[h.low].*c * (1.0f - h.share) + upper[h.high].*c * h.share;
        const float below = lower[h.low].*c * (1.0f - h.share) + lower[h.high].*c * h.share;
        return above * (1.0f - v.share) + below * v.share;
    };
    return {axis(&Vector2f::x), axis(&Vector2f::y)};
}

/// Limits a displacement so that its source lies in the picture.
Vector2f CLiquify::keptInside(Vector2f u, int x, int y) const {
    const auto limit = [](float value, int position, int size) {
        const auto p = static_cast<float>(position);
        if (-p > value) return -p;
        if (value + p > static_cast<float>(size - 1)) return static_cast<float>(size - position - 1);
        return value;
    };
    return {limit(u.x, x, m_image.width), limit(u.y, y, m_image.height)};
}

/// Every step redraws its disc from the same snapshot, so only the last displacement of a pixel shows: the
/// picture is drawn once, from the finished field. A displacement of zero gives back the pixel itself. Taps
/// beyond the snapshot, which only a strength above 100 reaches, are clamped to it.
void CLiquify::draw() const {
    const CubicSource source{ConstImageView(m_snapshot.data(), m_snapshotArea.width, m_snapshotArea.height),
                             m_snapshotArea.left, m_snapshotArea.top, m_image.width, m_image.height};
    parallelRows(m_field.height(), [&](int begin, int end) {
        std::vector<float> x(static_cast<std::size_t>(m_field.width())), y(x.size());
        for (int row = begin; row < end; ++row) {
            const Vector2f* cells = m_field.view().row(row);
            const auto still = [](Vector2f u) { return u.x == 0.0f && u.y == 0.0f; };
            int first = 0, last = m_field.width() - 1;
            while (first <= last && still(cells[first])) ++first;
            while (last >= first && still(cells[last])) --last;
            if (last < first) continue;
            for (int i = first; i <= last; ++i) {
                const auto at = static_cast<std::size_t>(i - first);
                x[at] = static_cast<float>(m_fieldArea.left + i) + cells[i].x;
                y[at] = static_cast<float>(m_fieldArea.top + row) + cells[i].y;
            }
            sampleCubicRun(source, x.data(), y.data(), last - first + 1,
                           m_image.at(m_fieldArea.left + first, m_fieldArea.top + row));
        }
    });
}

}  // namespace zellab
