#include "libzel/faces/pupils.h"

#include <cmath>

namespace zel {

namespace {

/// All lengths are in pupil distances.
constexpr float kReach = 0.12f, kStep = 0.012f;  // of the search about the landmark
constexpr float kIris = 0.06f, kWhite = 0.15f;   // radius of the dark disc, distance of the bright sides
constexpr float kPull = 60;                      // levels of luma that a whole pupil distance must be worth
constexpr float kSettled = 0.03f;                // closer than this the landmarks stay
constexpr float kAgreement = 0.05f;              // of the two eyes' ways

struct Eye {
    std::size_t first, pupil;
};
constexpr Eye kEyes[] = {{19, 24}, {65, 70}};
constexpr std::size_t kEyePoints = 10;

/// Mean luma of a disc.
float discLuma(const LumaPyramid& picture, int level, zellab::Vector2f middle, float radius) {
    float sum = 0;
    int count = 0;
    for (int y = -2; y <= 2; ++y)
        for (int x = -2; x <= 2; ++x) {
            if (x * x + y * y > 5) continue;
            sum += picture.at(level, middle.x + 0.4f * radius * static_cast<float>(x),
                              middle.y + 0.4f * radius * static_cast<float>(y));
            ++count;
        }
    return sum / static_cast<float>(count);
}

/// The way from the landmark to the darkest disc between bright sides; `across` leads from pupil to pupil.
zellab::Vector2f wayToIris(const LumaPyramid& picture, zellab::Vector2f landmark, zellab::Vector2f across) {
    const float unit = std::hypot(across.x, across.y);
    const int level = picture.levelFor(unit * 0.4f * kIris);
    const auto score = [&](float x, float y) {
        const zellab::Vector2f at{landmark.x + unit * x, landmark.y + unit * y};
        const float sides =
            0.5f * (discLuma(picture, level, {at.x - kWhite * across.x, at.y - kWhite * across.y},
                             0.5f * kIris * unit) +
                    discLuma(picture, level, {at.x + kWhite * across.x, at.y + kWhite * across.y},
                             0.5f * kIris * unit));
        return sides - discLuma(picture, level, at, kIris * unit) - kPull * std::hypot(x, y);
    };
    zellab::Vector2f best{0, 0};
    float bestScore = score(0, 0);
    for (float y = -kReach; y <= kReach; y += kStep)
        for (float x = -kReach; x <= kReach; x += kStep) {
            if (x * x + y * y > kReach * kReach) continue;
            const float s = score(x, y);
            if (s <= bestScore) continue;
            bestScore = s;
            best = {x, y};
        }
    return best;
}

}  // namespace

void settlePupils(const LumaPyramid& picture, Landmarks& points) {
    const auto left = points[kEyes[0].pupil], right = points[kEyes[1].pupil];
    const zellab::Vector2f across{right.x - left.x, right.y - left.y};
    const float unit = std::hypot(across.x, across.y);
    const auto a = wayToIris(picture, left, across), b = wayToIris(picture, right, across);
    if (std::hypot(a.x - b.x, a.y - b.y) > kAgreement) return;
    const zellab::Vector2f way{0.5f * (a.x + b.x), 0.5f * (a.y + b.y)};
    if (std::hypot(way.x, way.y) < kSettled) return;
    for (const Eye& eye : kEyes)
        for (std::size_t i = eye.first; i < eye.first + kEyePoints; ++i) {
            points[i].x += unit * way.x;
            points[i].y += unit * way.y;
        }
}

}  // namespace zel
