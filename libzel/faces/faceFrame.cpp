#include "libzel/faces/faceFrame.h"

#include <cmath>

namespace zel {

namespace {

constexpr std::size_t kLeftPupil = 24, kRightPupil = 70;

constexpr std::array<std::size_t, 2> kMirrored[] = {
    {1, 10},  {2, 11},  {3, 12},  {4, 13},  {5, 14},  {6, 15},  {7, 16},  {8, 17},  {9, 18},  {19, 65},
    {20, 66}, {24, 70}, {26, 72}, {21, 71}, {25, 67}, {22, 69}, {23, 68}, {27, 74}, {28, 73}, {29, 79},
    {30, 78}, {31, 77}, {32, 76}, {33, 75}, {34, 82}, {35, 81}, {36, 80}, {37, 46}, {39, 42}, {40, 43},
    {41, 44}, {48, 51}, {49, 52}, {50, 53}, {55, 59}, {56, 60}, {57, 61}, {62, 63}};

zellab::Vector2f middle(const Landmarks& points) {
    zellab::Vector2f sum{0, 0};
    for (const auto& p : points) sum = {sum.x + p.x, sum.y + p.y};
    return {sum.x / static_cast<float>(kLandmarks), sum.y / static_cast<float>(kLandmarks)};
}

}  // namespace

float Similarity::scale() const {
    return std::hypot(a, b);
}

Similarity Similarity::inverse() const {
    const float square = a * a + b * b;
    Similarity back{a / square, -b / square, 0, 0};
    const auto shift = back({shiftX, shiftY});
    back.shiftX = -shift.x;
    back.shiftY = -shift.y;
    return back;
}

Landmarks landmarksInPixels(const Face& face, const Image& image) {
    Landmarks points;
    for (std::size_t i = 0; i < points.size(); ++i)
        points[i] = {face.points[i].x * static_cast<float>(image.width),
                     face.points[i].y * static_cast<float>(image.height)};
    return points;
}

Landmarks moved(const Landmarks& points, const Similarity& by) {
    Landmarks result;
    for (std::size_t i = 0; i < kLandmarks; ++i) result[i] = by(points[i]);
    return result;
}

Similarity aligning(const Landmarks& from, const Landmarks& to) {
    const auto fromMiddle = middle(from), toMiddle = middle(to);
    float along = 0, across = 0, spread = 0;
    for (std::size_t i = 0; i < kLandmarks; ++i) {
        const float x = from[i].x - fromMiddle.x, y = from[i].y - fromMiddle.y;
        const float u = to[i].x - toMiddle.x, v = to[i].y - toMiddle.y;
        along += x * u + y * v;
        across += x * v - y * u;
        spread += x * x + y * y;
    }
    Similarity s{along / spread, across / spread, 0, 0};
    const auto shift = s(fromMiddle);
    s.shiftX = toMiddle.x - shift.x;
    s.shiftY = toMiddle.y - shift.y;
    return s;
}

const std::array<std::size_t, kLandmarks>& mirrorOrder() {
    static const auto order = [] {
        std::array<std::size_t, kLandmarks> made{};
        for (std::size_t i = 0; i < kLandmarks; ++i) made[i] = i;  // the middle line stays
        for (const auto& [left, right] : kMirrored) {
            made[left] = right;
            made[right] = left;
        }
        return made;
    }();
    return order;
}

float pupilDistance(const Landmarks& points) {
    return std::hypot(points[kRightPupil].x - points[kLeftPupil].x,
                      points[kRightPupil].y - points[kLeftPupil].y);
}

float landmarkError(const Landmarks& points, const Landmarks& truth) {
    float sum = 0;
    for (std::size_t i = 0; i < kLandmarks; ++i)
        sum += std::hypot(points[i].x - truth[i].x, points[i].y - truth[i].y);
    return sum / static_cast<float>(kLandmarks) / pupilDistance(truth);
}

}  // namespace zel
