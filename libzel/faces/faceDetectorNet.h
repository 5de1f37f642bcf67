#pragma once

#include <array>
#include <span>
#include <vector>

#include "libzel/faces/colourPyramid.h"
#include "libzel/faces/windowPlan.h"
#include "libzel/networks/network.h"

namespace zel {

/// A face as the detecting network sees it, in pixels of the picture.
struct DetectedFace {
    zellab::Vector2f centre;      // of a box from the brows to the chin
    float width = 0, height = 0;  // of the box, about equal
    /// Eye at the picture's left, eye at its right, tip of the nose, mouth, left ear, right ear.
    std::array<zellab::Vector2f, 6> marks{};
    float score = 0;  // 0 to 1

    /// What the mesh looks at: half as large again as the box, eyes level.
    TurnedSquare square() const;
};

namespace detector {

constexpr int kSide = 128;  // samples of a window
constexpr std::size_t kAnchors = 896;
constexpr std::size_t kPerAnchor = 16;  // numbers: the box's middle and size, and six marks

/// Place of an anchor in the window, as shares of its side.
zellab::Vector2f anchorAt(std::size_t anchor);

/// The faces among the network's numbers for one window.
/// @param boxes   kAnchors rows of kPerAnchor, in samples of the window, from the anchor on
/// @param scores  kAnchors, before the sigmoid
/// A face that the window's edge cuts where the picture goes on is left to another window.
std::vector<DetectedFace> decode(std::span<const float> boxes, std::span<const float> scores,
                                 const TurnedSquare& window, int width, int height);

/// One face for each group that overlaps, the surest first: the mean, weighted by score, of those much like the
/// surest of the group.
std::vector<DetectedFace> merge(std::vector<DetectedFace> faces);

}  // namespace detector

extern const NetworkKind kFaceDetectorKind;

/// What the network sees in the windows, each turned by `turn` about its middle: not yet merged, in the windows'
/// order. Throws NetworkFailure.
std::vector<DetectedFace> detectFaces(Network& network, const ColourPyramid& picture,
                                      const std::vector<TurnedSquare>& windows, float turn);

}  // namespace zel
