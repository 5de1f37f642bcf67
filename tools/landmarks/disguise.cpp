#include "disguise.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zeltrain {

namespace {

using zellab::Vector2f;

bool chance(std::mt19937& random, float probability) {
    return uniform(random, 0, 1) < probability;
}

/// Brings every pixel of the box nearer to a grey by a cover of 0 to 1.
template <typename Cover>
void paint(Canvas& canvas, float x0, float y0, float x1, float y1, float grey, const Cover& cover) {
    const int left = std::max(0, static_cast<int>(x0)),
              right = std::min(canvas.width - 1, static_cast<int>(x1));
    const int top = std::max(0, static_cast<int>(y0)),
              bottom = std::min(canvas.height - 1, static_cast<int>(y1));
    for (int y = top; y <= bottom; ++y)
        for (int x = left; x <= right; ++x) {
            unsigned char& v = canvas.luma[static_cast<std::size_t>(y) * canvas.width + x];
            const float share = std::clamp(cover(static_cast<float>(x), static_cast<float>(y)), 0.0f, 1.0f);
            v = static_cast<unsigned char>(static_cast<float>(v) + share * (grey - static_cast<float>(v)));
        }
}

/// A line with soft sides.
void stroke(Canvas& canvas, Vector2f a, Vector2f b, float half, float grey, float strength) {
    const float dx = b.x - a.x, dy = b.y - a.y, square = std::max(dx * dx + dy * dy, 1e-3f);
    paint(canvas, std::min(a.x, b.x) - half - 1, std::min(a.y, b.y) - half - 1, std::max(a.x, b.x) + half + 2,
          std::max(a.y, b.y) + half + 2, grey, [&](float x, float y) {
              const float t = std::clamp(((x - a.x) * dx + (y - a.y) * dy) / square, 0.0f, 1.0f);
              return strength * (half + 0.5f - std::hypot(x - a.x - t * dx, y - a.y - t * dy));
          });
}

/// Shape of a pair of glasses, in pupil distances.
struct Glasses {
    float halfWidth, halfHeight, drop, roundness, rim, brow, grey, browGrey;
};

void drawLens(Canvas& canvas, Vector2f eye, Vector2f across, float unit, const Glasses& g) {
    const float reach = unit * (std::max(g.halfWidth, g.halfHeight) + g.brow);
    const float cx = eye.x - across.y * unit * g.drop, cy = eye.y + across.x * unit * g.drop;
    const auto radius = [&](float x, float y, bool& upper) {
        const float u = ((x - cx) * across.x + (y - cy) * across.y) / (unit * g.halfWidth);
        const float v = (-(x - cx) * across.y + (y - cy) * across.x) / (unit * g.halfHeight);
        upper = v < -0.15f;
        return std::pow(std::pow(std::fabs(u), g.roundness) + std::pow(std::fabs(v), g.roundness),
                        1.0f / g.roundness);
    };
    for (const bool brows : {false, true})
        paint(canvas, cx - reach, cy - reach, cx + reach, cy + reach, brows ? g.browGrey : g.grey,
              [&](float x, float y) {
                  bool upper = false;
                  const float off =
                      std::fabs(radius(x, y, upper) - 1) * unit * std::min(g.halfWidth, g.halfHeight);
                  if (brows && !upper) return 0.0f;
                  return unit * (brows ? g.brow : g.rim) + 0.5f - off;
              });
}

void putOnGlasses(Canvas& canvas, const zel::Landmarks& face, std::mt19937& random) {
    const float unit = zel::pupilDistance(face);
    const Vector2f left = face[20], right = face[66];
    const float span = std::hypot(right.x - left.x, right.y - left.y);
    const Vector2f across{(right.x - left.x) / span, (right.y - left.y) / span};
    Glasses g{};
    g.halfWidth = uniform(random, 0.3f, 0.47f);
    g.halfHeight = uniform(random, 0.2f, 0.42f);
    g.drop = uniform(random, -0.02f, 0.16f);
    g.roundness = uniform(random, 2, 4);
    g.rim = uniform(random, 0.005f, 0.04f);
    g.grey = uniform(random, 10, 190);
    const bool heavy = chance(random, 0.5f);
    g.brow = heavy ? uniform(random, 0.03f, 0.08f) : g.rim;
    g.browGrey = heavy ? uniform(random, 5, 70) : g.grey;
    drawLens(canvas, left, across, unit, g);
    drawLens(canvas, right, across, unit, g);
    const float inner = unit * g.halfWidth * 0.98f, rim = std::max(0.6f, unit * g.rim);
    const float drop = unit * (g.drop - uniform(random, 0, 0.2f));
    const auto beside = [&](Vector2f eye, float along) {
        return Vector2f{eye.x + across.x * along - across.y * drop,
                        eye.y + across.y * along + across.x * drop};
    };
    stroke(canvas, beside(left, inner), beside(right, -inner), rim, g.grey, 1);
    stroke(canvas, beside(left, -inner), {face[1].x, face[1].y}, unit * g.brow, g.browGrey, 1);
    stroke(canvas, beside(right, inner), {face[10].x, face[10].y}, unit * g.brow, g.browGrey, 1);
    if (!chance(random, 0.5f)) return;
    for (const Vector2f eye : {left, right}) {  // the window's reflection
        const Vector2f at = beside(eye, unit * uniform(random, -0.3f, 0.3f));
        const float size = unit * uniform(random, 0.02f, 0.1f), strength = uniform(random, 0.2f, 0.9f);
        stroke(canvas, at, {at.x + size, at.y + uniform(random, -1, 1) * size}, size * 0.5f, 250, strength);
    }
}

/// Covers everything above a line over the brows.
void putOnHat(Canvas& canvas, const zel::Landmarks& face, std::mt19937& random) {
    const float unit = zel::pupilDistance(face), height = unit * uniform(random, 0.08f, 0.7f);
    const Vector2f a = face[35], b = face[81];
    const float slope = (b.y - a.y) / std::max(1.0f, b.x - a.x) + uniform(random, -0.15f, 0.15f);
    const float bend = uniform(random, -0.5f, 0.5f) / unit, middle = 0.5f * (a.x + b.x);
    const float blur = unit * uniform(random, 0.02f, 0.1f);
    paint(canvas, 0, 0, static_cast<float>(canvas.width), std::max(a.y, b.y), uniform(random, 5, 220),
          [&](float x, float y) {
              const float off = x - middle;
              return (0.5f * (a.y + b.y) + slope * off + bend * off * off - height - y) / blur;
          });
}

/// Lines of age and folds of the skin, in and below the face.
void addLines(Canvas& canvas, const zel::Landmarks& face, std::mt19937& random) {
    const float unit = zel::pupilDistance(face);
    const auto near = [&](std::size_t landmark, float spread) {
        return Vector2f{face[landmark].x + unit * spread * uniform(random, -1, 1),
                        face[landmark].y + unit * spread * uniform(random, -1, 1)};
    };
    const auto line = [&](Vector2f a, Vector2f b) {
        stroke(canvas, a, b, unit * uniform(random, 0.004f, 0.025f), uniform(random, 20, 90),
               uniform(random, 0.1f, 0.5f));
    };
    constexpr std::size_t kPlaces[] = {0,  5,  7,  9,  14, 16, 18, 19, 65, 21,
                                       71, 35, 81, 37, 46, 38, 62, 63, 33, 75};
    const int count = static_cast<int>(uniform(random, 2, 16));
    for (int i = 0; i < count; ++i) {
        const Vector2f a = near(kPlaces[random() % std::size(kPlaces)], 0.25f);
        const float angle = uniform(random, 0, 2 * std::numbers::pi_v<float>);
        const float reach = unit * uniform(random, 0.08f, 0.4f);
        line(a, {a.x + reach * std::cos(angle), a.y + reach * std::sin(angle)});
    }
    if (chance(random, 0.5f)) {
        line(near(62, 0.08f), near(37, 0.15f));
        line(near(63, 0.08f), near(46, 0.15f));
    }
    if (chance(random, 0.5f)) {  // from the mouth's corners to the jaw
        line(near(37, 0.08f), near(8, 0.25f));
        line(near(46, 0.08f), near(17, 0.25f));
    }
    if (chance(random, 0.4f)) {  // bags under the eyes
        for (const std::size_t lid : {19u, 65u}) {
            const Vector2f below{face[lid].x, face[lid].y + unit * uniform(random, 0.06f, 0.2f)};
            const float half = unit * uniform(random, 0.1f, 0.2f);
            line({below.x - half, below.y - 0.3f * half}, below);
            line(below, {below.x + half, below.y - 0.3f * half});
        }
    }
}

/// Smooth random patches, lighter and darker.
void addBlotches(Canvas& canvas, const zel::Landmarks& face, std::mt19937& random) {
    const float step = zel::pupilDistance(face) * uniform(random, 0.08f, 0.4f),
                depth = uniform(random, 0.03f, 0.2f);
    const int columns = static_cast<int>(static_cast<float>(canvas.width) / step) + 2;
    const int rows = static_cast<int>(static_cast<float>(canvas.height) / step) + 2;
    std::vector<float> knots(static_cast<std::size_t>(columns) * rows);
    for (float& knot : knots) knot = uniform(random, 1 - depth, 1 + depth);
    for (int y = 0; y < canvas.height; ++y)
        for (int x = 0; x < canvas.width; ++x) {
            const float fx = static_cast<float>(x) / step, fy = static_cast<float>(y) / step;
            const float* k = knots.data() + static_cast<int>(fy) * columns + static_cast<int>(fx);
            const float u = fx - std::floor(fx), v = fy - std::floor(fy);
            const float factor =
                (1 - v) * ((1 - u) * k[0] + u * k[1]) + v * ((1 - u) * k[columns] + u * k[columns + 1]);
            unsigned char& p = canvas.luma[static_cast<std::size_t>(y) * canvas.width + x];
            p = static_cast<unsigned char>(std::min(255.0f, static_cast<float>(p) * factor));
        }
}

/// Hands, hair, collars: soft-edged bars that hide a part.
void holdSomethingBefore(Canvas& canvas, const zel::Landmarks& face, std::mt19937& random) {
    const float unit = zel::pupilDistance(face);
    const Vector2f at = face[random() % zel::kLandmarks];
    const float angle = uniform(random, 0, 2 * std::numbers::pi_v<float>),
                reach = unit * uniform(random, 0.1f, 1.2f);
    stroke(canvas, at, {at.x + reach * std::cos(angle), at.y + reach * std::sin(angle)},
           unit * uniform(random, 0.05f, 0.25f), uniform(random, 10, 230), 0.5f);
}

}  // namespace

float uniform(std::mt19937& random, float low, float high) {
    return low + (high - low) * static_cast<float>(random()) / 4294967296.0f;
}

void disguise(Canvas& canvas, const zel::Landmarks& face, std::mt19937& random) {
    if (chance(random, 0.5f)) addBlotches(canvas, face, random);
    if (chance(random, 0.6f)) addLines(canvas, face, random);
    if (chance(random, 0.35f)) putOnHat(canvas, face, random);
    if (chance(random, 0.4f)) putOnGlasses(canvas, face, random);
    if (chance(random, 0.2f)) holdSomethingBefore(canvas, face, random);
}

}  // namespace zeltrain
