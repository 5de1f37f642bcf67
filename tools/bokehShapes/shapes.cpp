#include "shapes.h"

#include <algorithm>
#include <cmath>

#include "bokeh/kernelStrip.h"

namespace zelshapes {

namespace {

using zellab::Bokeh::kFrames;
using zellab::Bokeh::kFrameSide;
using zellab::Bokeh::kStripHeight;
using zellab::Bokeh::kStripWidth;
using zellab::Bokeh::kUsedShare;

constexpr double kPi = 3.14159265358979324;
constexpr double kRim = 0.97;  // radius of a full shape: a margin for the smoothed edge

double length(Point p) {
    return std::hypot(p.x, p.y);
}

/// Off the centre a lens cuts its aperture with the edge of its barrel, from the outer side.
bool insideBarrel(Point p, int frame) {
    constexpr double kShift = 0.10, kShrink = 0.015;  // a frame
    return length({p.x + kShift * frame, p.y}) <= kRim - kShrink * frame;
}

/// A disc, a little brighter at its rim as a well-corrected lens draws it.
double classic(Point p, int frame) {
    if (length(p) > kRim || !insideBarrel(p, frame)) return 0.0;
    return 0.85 + 0.15 * std::pow(length(p) / kRim, 6.0);
}

/// Straight blades, corners up and down.
double hexagon(Point p, int frame) {
    double reach = 0.0;
    for (int side = 0; side < 6; ++side)
        reach = std::max(reach, p.x * std::cos(side * kPi / 3) + p.y * std::sin(side * kPi / 3));
    return reach <= kRim * std::cos(kPi / 6) && insideBarrel(p, frame) ? 1.0 : 0.0;
}

/// The sextic heart, moved and scaled to fill the square.
double heart(Point p, int frame) {
    const double x = p.x * 1.18, y = 0.14 - p.y * 1.16;
    const double ring = x * x + y * y - 1.0;
    return ring * ring * ring <= x * x * y * y * y && insideBarrel({p.x * 0.7, p.y * 0.7}, frame) ? 1.0 : 0.0;
}

/// Five points, one of them up.
double star(Point p, int frame) {
    constexpr double kInner = 0.45;  // radius of the corners between the points
    const double step = kPi / 5;
    double angle = std::fabs(std::remainder(std::atan2(p.x, -p.y), 2.0 * step));
    // The edge from a point (radius 1, angle 0) to the next inner corner, as a line in polar form.
    const Point a{kRim, 0.0}, b{kRim * kInner * std::cos(step), kRim * kInner * std::sin(step)};
    const Point q{length(p) * std::cos(angle), length(p) * std::sin(angle)};
    const double side = (b.x - a.x) * (q.y - a.y) - (b.y - a.y) * (q.x - a.x);
    return side >= 0.0 && insideBarrel(p, frame) ? 1.0 : 0.0;
}

/// A mirror lens: its middle is covered.
double ring(Point p, int frame) {
    constexpr double kHole = 0.58;
    return length(p) <= kRim && length(p) >= kHole && insideBarrel(p, frame) ? 1.0 : 0.0;
}

/// An anamorphic lens: upright ovals.
double oval(Point p, int frame) {
    constexpr double kWidth = 0.56;  // of the height
    return length({p.x / kWidth, p.y}) <= kRim && insideBarrel(p, frame) ? 1.0 : 0.0;
}

/// Cat's eyes across the way to the centre, narrower and smaller toward the corner: turned around the
/// picture they swirl.
double spin(Point p, int frame) {
    const double halfWidth = kRim * (1.0 - 0.13 * frame), halfHeight = kRim * (1.0 - 0.03 * frame);
    // Two equal arcs that meet in the tips.
    const double radius = (halfWidth * halfWidth + halfHeight * halfHeight) / (2.0 * halfWidth);
    const double away = radius - halfWidth;
    const double edge = std::max(length({p.x - away, p.y}), length({p.x + away, p.y})) / radius;
    return edge <= 1.0 ? 0.8 + 0.2 * std::pow(edge, 6.0) : 0.0;
}

/// Mean of a pixel's samples.
double pixelBrightness(const Shape& shape, int x, int y, int frame) {
    constexpr int kSamples = 8;  // each way
    const auto place = [](int pixel, int sample) {
        return ((pixel + (sample + 0.5) / kSamples) / kFrameSide - 0.5) * 2.0 / double{kUsedShare};
    };
    double sum = 0.0;
    for (int i = 0; i < kSamples; ++i)
        for (int j = 0; j < kSamples; ++j) sum += shape.brightness({place(x, j), place(y, i)}, frame);
    return sum / (kSamples * kSamples);
}

}  // namespace

const std::vector<Shape>& shapes() {
    static const std::vector<Shape> kShapes = {{"classic", classic}, {"hexagon", hexagon}, {"heart", heart},
                                               {"star", star},       {"ring", ring},       {"oval", oval},
                                               {"spin", spin}};
    return kShapes;
}

std::vector<unsigned char> drawStrip(const Shape& shape) {
    std::vector<unsigned char> strip;
    strip.reserve(std::size_t{kStripWidth} * kStripHeight);
    for (int y = 0; y < kStripHeight; ++y)
        for (int x = 0; x < kStripWidth; ++x)
            strip.push_back(static_cast<unsigned char>(
                std::lround(255.0 * pixelBrightness(shape, x % kFrameSide, y, x / kFrameSide))));
    return strip;
}

}  // namespace zelshapes
