#pragma once

#include <array>

#include "zel_effects/zel_records.h"

/// A standard face in the unit square of a tall picture (9 to 16): its 83 landmarks, and the extra points of
/// the features that are fitted to a face through them. Only the place of extra points against the landmarks
/// of their own feature matters; the whole may be stretched or turned.

namespace zellab {

extern const std::array<Vector2f, 83> kTemplateLandmarks;

/// Ten points an eye. From the picture's left eye's outer corner along the upper lid to its inner corner (0
/// to 5), along the lower lid in the same direction (6 to 9), then the right eye from its inner corner
/// outwards.
extern const std::array<Vector2f, 20> kTemplateEyes;

/// Ten points about a brow and its hairs: above the left one from its outer end to its inner end (0 to 5),
/// below it in the same direction without the ends (6 to 9), then the right one from its inner end outwards.
extern const std::array<Vector2f, 20> kTemplateBrows;

/// The mouth from left to right, four times: upper edge of the upper lip with both corners (0 to 8), lower
/// edge of the upper lip (9 to 15), upper edge of the lower lip (16 to 22), lower edge of the lower lip (23
/// to 29). It stands a little open, so that the lips' inner edges have a distance.
extern const std::array<Vector2f, 30> kTemplateMouth;

}  // namespace zellab
