#include "bokeh/spinIndex.h"

#include <cmath>

#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab::Bokeh {

namespace {

/// Tangents of 9, 27, 45, 63 and 81 degrees, between the twentieths of a turn in a quadrant.
constexpr float kSectorTangents[] = {0.15838444f, 0.50952545f, 1.0f, 1.9626105f, 6.3137515f};

/// Rounded twentieth of a turn, 0..19, of the direction (right, down); the positive x axis is 0.
int sectorOf(float right, float down) {
    int quarter = 0;
    for (const float tangent : kSectorTangents) quarter += std::fabs(down) > tangent * std::fabs(right);
    const int half = right < 0.0f ? kRotations / 2 - quarter : quarter;
    return down < 0.0f ? (kRotations - half) % kRotations : half;
}

}  // namespace

int spinRecord(int x, int y, int width, int height) {
    const auto w = static_cast<float>(width), h = static_cast<float>(height);
    const float right = 2.0f * static_cast<float>(x) + 1.0f - w,
                down = 2.0f * static_cast<float>(y) + 1.0f - h;
    const float distance = right * right + down * down, corner = w * w + h * h;  // squares
    int frame = 0;
    for (int k = 1; k < kFrames; ++k)
        frame += distance * (kFrames * kFrames) >= static_cast<float>(k * k) * corner;
    // A kernel turned by an angle shows its shape turned the other way.
    const int rotation = (kRotations - sectorOf(right, down)) % kRotations;
    return rotation * kFrames + frame;
}

Plane<Byte> spinIndexPlane(int width, int height) {
    Plane<Byte> plane(width, height);
    parallelRows(height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < width; ++x)
                plane.view().row(y)[x] = static_cast<Byte>(spinRecord(x, y, width, height));
    });
    return plane;
}

}  // namespace zellab::Bokeh
