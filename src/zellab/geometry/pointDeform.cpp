#include "zellab/geometry/pointDeform.h"

#include <cmath>

#include "zel_effects/zel_records.h"

namespace zellab {

namespace {

/// Keeps a weight finite where a control coincides with the point.
constexpr double kWeightFloor = 1e-8;

Vector2f pointOf(const PointLists& list, std::size_t i) {
    return {list.x[i], list.y[i]};
}

float weightAt(Vector2f control, Vector2f v) {
    const float dx = control.x - v.x, dy = control.y - v.y;
    const float s = dx * dx + dy * dy;
    return static_cast<float>(1.0 / (static_cast<double>(s * s) + kWeightFloor));
}

Vector2f weightedCentroid(const PointLists& controls, const std::vector<float>& weights) {
    float sumX = 0.0f, sumY = 0.0f, sum = 0.0f;
    for (std::size_t i = 0; i < weights.size(); ++i) {
        sumX += weights[i] * controls.x[i];
        sumY += weights[i] * controls.y[i];
        sum += weights[i];
    }
    return {sumX / sum, sumY / sum};
}

/// What both forms need at one point.
struct LocalFit {
    const PointLists &from, &to;
    const std::vector<float>& weights;
    Vector2f fromCentre, toCentre;
};

Vector2f rigidAt(Vector2f v, const LocalFit& fit) {
    const Vector2f d{v.x - fit.fromCentre.x, v.y - fit.fromCentre.y};
    const Vector2f e{d.y, -d.x};
    Vector2f f;
    for (std::size_t i = 0; i < fit.weights.size(); ++i) {
        const float px = fit.from.x[i] - fit.fromCentre.x, py = fit.from.y[i] - fit.fromCentre.y;
        const float qx = fit.to.x[i] - fit.toCentre.x, qy = fit.to.y[i] - fit.toCentre.y;
        const float w = fit.weights[i];
        const float a0 = (px * d.x + py * d.y) * w;
        const float a1 = (px * e.x + py * e.y) * w;
        const float a2 = (py * d.x - px * d.y) * w;
        const float a3 = (py * e.x - px * e.y) * w;
        f.x += a0 * qx + a2 * qy;
        f.y += a1 * qx + a3 * qy;
    }
    const float scale = std::sqrt(d.x * d.x + d.y * d.y) / std::sqrt(f.x * f.x + f.y * f.y);
    return {f.x * scale + fit.toCentre.x, f.y * scale + fit.toCentre.y};
}

Vector2f affineAt(Vector2f v, const LocalFit& fit) {
    float m11 = 0.0f, m12 = 0.0f, m22 = 0.0f;
    for (std::size_t i = 0; i < fit.weights.size(); ++i) {
        const float px = fit.from.x[i] - fit.fromCentre.x, py = fit.from.y[i] - fit.fromCentre.y;
        m11 += fit.weights[i] * (px * px);
        m12 += fit.weights[i] * (px * py);
        m22 += fit.weights[i] * (py * py);
    }
    const float determinant = m11 * m22 - m12 * m12;
    const float i11 = m22 / determinant, i12 = -m12 / determinant, i22 = m11 / determinant;
    const Vector2f d{v.x - fit.fromCentre.x, v.y - fit.fromCentre.y};
    const Vector2f u{d.x * i11 + d.y * i12, d.x * i12 + d.y * i22};
    Vector2f result = fit.toCentre;
    for (std::size_t i = 0; i < fit.weights.size(); ++i) {
        const float px = fit.from.x[i] - fit.fromCentre.x, py = fit.from.y[i] - fit.fromCentre.y;
        const float coefficient = (px * u.x + py * u.y) * fit.weights[i];
        result.x += coefficient * (fit.to.x[i] - fit.toCentre.x);
        result.y += coefficient * (fit.to.y[i] - fit.toCentre.y);
    }
    return result;
}

template <typename Form>
void deform(const PointLists& points, PointLists& out, const PointLists& from, const PointLists& to,
            int controlCount, int pointCount, const Form& form) {
    const auto count = static_cast<std::size_t>(pointCount > 0 ? pointCount : 0);
    std::vector<float> weights(static_cast<std::size_t>(controlCount > 0 ? controlCount : 0));
    out.x.resize(count);
    out.y.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        const Vector2f v = pointOf(points, i);
        for (std::size_t k = 0; k < weights.size(); ++k) weights[k] = weightAt(pointOf(from, k), v);
        const LocalFit fit{from, to, weights, weightedCentroid(from, weights), weightedCentroid(to, weights)};
        const Vector2f moved = form(v, fit);
        out.x[i] = moved.x;
        out.y[i] = moved.y;
    }
}

}  // namespace

void RigidMlsDeform(const PointLists& points, PointLists& out, const PointLists& controlsFrom,
                    const PointLists& controlsTo, int controlCount, int pointCount) {
    deform(points, out, controlsFrom, controlsTo, controlCount, pointCount, rigidAt);
}

void AffineMlsDeform(const PointLists& points, PointLists& out, const PointLists& controlsFrom,
                     const PointLists& controlsTo, int controlCount, int pointCount) {
    deform(points, out, controlsFrom, controlsTo, controlCount, pointCount, affineAt);
}

}  // namespace zellab
