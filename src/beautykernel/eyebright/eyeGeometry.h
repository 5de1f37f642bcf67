#pragma once

#include <array>

#include "zel_effects/zel_records.h"
#include "zellab/imageproc/core/imageView.h"

/// Where the eyes of a face lie: lids, boxes, irises. Everything is in pixels of the picture.

namespace zellab {

enum class EyeSide { left, right };

struct LidPoint {
    int x = 0, y = 0;
};

/// Both curves run from corner to corner, left to right.
struct EyeLids {
    static constexpr std::size_t kPoints = 6;
    std::array<LidPoint, kPoints> upper, lower;
};

/// The lids from the interpolated points of a face.
EyeLids lidsOf(const Vector2f* points, EyeSide side);

/// A box of pixels; empty where a side is below 1.
struct EyeBox {
    int x = 0, y = 0, width = 0, height = 0;

    bool empty() const { return width < 1 || height < 1; }
};

/// The tight box of both curves, clipped to the picture without its first row and column. Empty where that
/// leaves nothing, or a side as long as the picture's.
EyeBox eyeBox(const EyeLids& lids, int width, int height);

/// An iris as a full circle, whatever the lids hide.
struct Iris {
    float x = 0.0f, y = 0.0f, radius = 0.0f;

    bool found() const { return radius > 0.0f; }
};

/// The distance of the lids' middles as a share of the eye's length.
float lidGap(const Vector2f* points, EyeSide side);

/// Finds the iris of one eye around its lids. Without a pupil landmark, and where the picture shows no iris,
/// the result has radius 0.
Iris locateIris(ConstImageView picture, const Vector2f* points, EyeSide side);

}  // namespace zellab
