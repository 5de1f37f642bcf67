#pragma once

#include <array>
#include <vector>

#include "portrait/faces.h"
#include "portrait/image.h"
#include "zel_effects/zel_records.h"

namespace zel {

constexpr std::size_t kLandmarks = 83;
using Landmarks = std::array<zellab::Vector2f, kLandmarks>;

/// A turn, scale and shift: (x, y) -> (a x - b y + shiftX, b x + a y + shiftY).
struct Similarity {
    float a = 1, b = 0, shiftX = 0, shiftY = 0;

    zellab::Vector2f operator()(zellab::Vector2f p) const {
        return {a * p.x - b * p.y + shiftX, b * p.x + a * p.y + shiftY};
    }
    float scale() const;
    Similarity inverse() const;
};

/// The landmarks of a face in pixels of its picture.
Landmarks landmarksInPixels(const Face& face, const Image& image);

Landmarks moved(const Landmarks& points, const Similarity& by);

/// The similarity that takes `from` to `to` with the least sum of squares.
Similarity aligning(const Landmarks& from, const Landmarks& to);

/// The landmark at the mirrored place of each landmark.
const std::array<std::size_t, kLandmarks>& mirrorOrder();

/// Distance of the two pupils.
float pupilDistance(const Landmarks& points);

/// Mean distance of the landmarks from the true ones, in pupil distances of the true face.
float landmarkError(const Landmarks& points, const Landmarks& truth);

}  // namespace zel
