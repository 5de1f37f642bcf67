#include "libzel/faces/chin.h"

#include <cmath>

namespace zel {

namespace {

/// All lengths are in pupil distances.
constexpr float kBelowLip = 0.25f;    // the search begins here, under the groove of the chin
constexpr float kStep = 0.02f;        // of the search
constexpr float kHalfWindow = 0.05f;  // the luma above and below a place is taken over this height
constexpr float kHalfWidth = 0.12f;   // and this width to either side
constexpr float kSettled = 0.05f;     // nearer than this the chin stays
constexpr float kShadow = 22;         // levels of luma that the shadow must be darker than the chin

constexpr std::size_t kChin = 0, kLipBottom = 38, kLeftContour = 1, kRightContour = 10, kSideSteps = 9;

struct Axes {
    zellab::Vector2f across, down;  // one pupil distance each
};

/// Mean luma of a bar that lies across the face.
float barLuma(const LumaPyramid& picture, const Axes& axes, zellab::Vector2f middle) {
    const float unit = std::hypot(axes.across.x, axes.across.y);
    const int level = picture.levelFor(unit * kHalfWidth * 0.25f);
    float sum = 0;
    for (int i = -4; i <= 4; ++i) {
        const float along = kHalfWidth * static_cast<float>(i) / 4.0f;
        sum += picture.at(level, middle.x + along * axes.across.x, middle.y + along * axes.across.y);
    }
    return sum / 9.0f;
}

}  // namespace

void settleChin(const LumaPyramid& picture, Landmarks& points) {
    Axes axes;
    axes.across = {points[70].x - points[24].x, points[70].y - points[24].y};
    axes.down = {-axes.across.y, axes.across.x};
    const auto lip = points[kLipBottom], chin = points[kChin];
    const float square = axes.down.x * axes.down.x + axes.down.y * axes.down.y;
    const float length = ((chin.x - lip.x) * axes.down.x + (chin.y - lip.y) * axes.down.y) / square;
    const auto lumaAt = [&](float t) {
        return barLuma(picture, axes, {lip.x + t * axes.down.x, lip.y + t * axes.down.y});
    };
    float best = length, bestFall = kShadow;
    for (float t = kBelowLip; t <= length; t += kStep) {
        const float fall = lumaAt(t - kHalfWindow) - lumaAt(t + kHalfWindow);
        if (fall <= bestFall) continue;
        bestFall = fall;
        best = t;
    }
    const float rise = length - best;
    if (rise < kSettled) return;
    const auto raise = [&](std::size_t i, float share) {
        points[i].x -= share * rise * axes.down.x;
        points[i].y -= share * rise * axes.down.y;
    };
    raise(kChin, 1);
    for (std::size_t i = 0; i < kSideSteps; ++i) {  // from the temple, which stays, to the chin
        const float way = static_cast<float>(i) / kSideSteps;
        raise(kLeftContour + i, way * way);
        raise(kRightContour + i, way * way);
    }
}

}  // namespace zel
