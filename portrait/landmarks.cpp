#include "headPose.h"

namespace zel::drawing {

namespace {

using FacePoints = std::array<Vec2, 83>;

/// Contour points 1 to 9 and 10 to 18: even steps along the outline from the temple to the chin.
void placeContour(const FaceShape& shape, FacePoints& points) {
    constexpr int kWalk = 400;
    const Vec2 middle = FaceShape::kMiddle;
    const float temple = angleOf(0.0f - middle.y, shape.outlineRadius(0)), chin = 0.5f * kPi;
    float travelled[kWalk + 1] = {0};
    const auto at = [&](int i) {
        return shape.outlinePoint(mix(temple, chin, static_cast<float>(i) / kWalk));
    };
    for (int i = 1; i <= kWalk; ++i) travelled[i] = travelled[i - 1] + length(at(i) - at(i - 1));
    int step = 0;
    for (int i = 0; i < 9; ++i) {
        while (step < kWalk && travelled[step] < travelled[kWalk] * static_cast<float>(i) / 9.0f) ++step;
        const Vec2 right = at(step);
        points[std::size_t{10} + static_cast<std::size_t>(i)] = right;
        points[std::size_t{1} + static_cast<std::size_t>(i)] = {-right.x, right.y};
    }
    points[0] = {0, shape.chinY()};
}

void placeEye(const EyeShape& eye, std::size_t first, FacePoints& points) {
    // Quarters are told from the picture's left, t from the inner corner.
    const float toRight = eye.side;
    const auto lower = [&](float t) { return Vec2{eye.x(t), eye.lowerLid(t)}; };
    const auto upper = [&](float t) { return Vec2{eye.x(t), eye.upperLid(t)}; };
    points[first] = lower(0);
    points[first + 1] = mix(lower(0), upper(0), 0.5f);
    points[first + 2] = lower(-toRight);
    points[first + 3] = lower(-0.5f * toRight);
    points[first + 4] = lower(0.5f * toRight);
    points[first + 5] = eye.iris;
    points[first + 6] = lower(toRight);
    points[first + 7] = upper(0);
    points[first + 8] = upper(-0.5f * toRight);
    points[first + 9] = upper(0.5f * toRight);
}

void placeBrow(const BrowShape& brow, std::size_t first, FacePoints& points) {
    const auto edge = [&](float fromLeft, float side) {
        const float t = brow.side > 0 ? fromLeft : 1.0f - fromLeft;
        return Vec2{brow.x(t), brow.y(t) + side * brow.half(t)};
    };
    points[first] = edge(0, 0);
    points[first + 4] = edge(1, 0);
    for (std::size_t i = 1; i < 4; ++i) {
        points[first + i] = edge(0.25f * static_cast<float>(i), 1);
        points[first + 4 + i] = edge(0.25f * static_cast<float>(i), -1);
    }
}

void placeMouth(const MouthShape& mouth, FacePoints& points) {
    constexpr float kPeak = 0.24f;  // of the upper lip's two peaks, as a share of half the mouth
    const auto put = [&](std::size_t index, float t, float y) { points[index] = {t * mouth.halfWidth, y}; };
    put(37, -1, mouth.line(-1));
    put(46, 1, mouth.line(1));
    put(38, 0, mouth.lowerEdge(0));
    put(45, 0, mouth.line(0) + 0.5f * mouth.gap);
    put(47, 0, mouth.line(0) - 0.5f * mouth.gap);
    put(54, 0, mouth.upperEdge(0));
    for (const float side : {-1.0f, 1.0f}) {
        const std::size_t lower = side < 0 ? 39 : 42, upper = side < 0 ? 48 : 51;
        put(lower, side * 0.5f, mouth.line(0.5f) + 0.5f * mouth.gap);
        put(lower + 1, side * 0.667f, mouth.lowerEdge(0.667f));
        put(lower + 2, side * 0.333f, mouth.lowerEdge(0.333f));
        put(upper, side * kPeak, mouth.upperEdge(kPeak));
        put(upper + 1, side * 0.62f, mouth.upperEdge(0.62f));
        put(upper + 2, side * 0.5f, mouth.line(0.5f) - 0.5f * mouth.gap);
    }
}

void placeNose(const NoseShape& nose, FacePoints& points) {
    for (const float side : {-1.0f, 1.0f}) {
        const std::size_t contour = side < 0 ? 55 : 59;
        points[contour] = {side * 8.5f, 1.5f};
        points[contour + 1] = {side * (nose.wingX - 2.5f), nose.wingY - 8.0f};
        points[contour + 2] = {side * nose.wingX * 0.5f, nose.baseY + 0.3f};
        points[side < 0 ? 62 : 63] = {side * nose.wingX, nose.wingY};
    }
    points[58] = {0, nose.baseY + 1.5f};
    points[64] = {0, nose.tipY};
}

}  // namespace

Face measureFace(const FaceShape& shape, const HeadPose& pose, int width, int height) {
    FacePoints points;
    placeContour(shape, points);
    placeEye(shape.eyes[0], 19, points);
    placeEye(shape.eyes[1], 65, points);
    placeBrow(shape.brows[0], 29, points);
    placeBrow(shape.brows[1], 75, points);
    placeMouth(shape.mouth, points);
    placeNose(shape.nose, points);

    Face face;
    Vec2 low{1e9f, 1e9f}, high{-1e9f, -1e9f};
    float browTop = 1e9f;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Vec2 pixel = pose.toPicture(points[i]);
        const Vec2 share{pixel.x / static_cast<float>(width), pixel.y / static_cast<float>(height)};
        face.points[i] = share;
        low = {std::min(low.x, share.x), std::min(low.y, share.y)};
        high = {std::max(high.x, share.x), std::max(high.y, share.y)};
        if ((i >= 29 && i <= 36) || i >= 75) browTop = std::min(browTop, share.y);
    }
    const float eyeLine = 0.5f * (face.points[20].y + face.points[66].y);
    const float top = std::min(low.y, 2.0f * browTop - eyeLine);
    face.rect = {low.x, top, high.x - low.x, high.y - top};
    return face;
}

}  // namespace zel::drawing
