#include "libzel/faces/foundFace.h"

#include <algorithm>

namespace zel {

namespace {

std::array<float, 4> rectOf(const std::array<zellab::Vector2f, kLandmarks>& points) {
    float left = points[0].x, right = left, top = points[0].y, bottom = top;
    for (const auto& p : points) {
        left = std::min(left, p.x);
        right = std::max(right, p.x);
        top = std::min(top, p.y);
        bottom = std::max(bottom, p.y);
    }
    const float eyes = 0.5f * (points[20].y + points[66].y);
    const float brows = std::min(points[35].y, points[81].y);
    top = std::min(top, 2 * brows - eyes);
    return {left, top, right - left, bottom - top};
}

}  // namespace

Face foundFace(const Landmarks& points, int width, int height, float confidence) {
    Face face;
    // A face at the edge may reach beyond the picture, as far as face data may tell.
    const auto share = [](float pixel, int side) {
        return std::clamp(pixel / static_cast<float>(side), -1.0f, 2.0f);
    };
    for (std::size_t i = 0; i < kLandmarks; ++i)
        face.points[i] = {share(points[i].x, width), share(points[i].y, height)};
    face.rect = rectOf(face.points);
    face.confidence = confidence;
    return face;
}

zellab::Vector2f pupilMiddle(const Landmarks& points) {
    return {0.5f * (points[24].x + points[70].x), 0.5f * (points[24].y + points[70].y)};
}

}  // namespace zel
