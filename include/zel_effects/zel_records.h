#pragma once

/// The plain records that cross the library's surface. Origin is the top left, x runs right, y runs down.

namespace zellab {

/// A point; in pixels unless a declaration says otherwise.
struct Vector2f {
    float x = 0.0f;
    float y = 0.0f;
};

}  // namespace zellab

/// A rectangle in pixels of the picture that is passed beside it.
/// An operation that takes one returns at once when its width or height is not above 0.
struct CGRect {
    float x = 0.0f;
    float y = 0.0f;
    float width = 0.0f;
    float height = 0.0f;
};

/// One face: a rectangle and 83 landmarks, all as fractions of the picture's width (x) and height (y).
///
/// Landmark order: 0 chin tip; 1-9 left contour from the temple down; 10-18 right contour likewise;
/// 19-28 left eye (24 pupil, 21 outer corner, 25 inner corner, 26 upper lid, 19 lower lid);
/// 29-36 left brow; 37-54 mouth; 55-64 nose; 65-74 right eye (70 pupil, 67 inner corner, 71 outer
/// corner, 72 upper lid, 65 lower lid); 75-82 right brow. "Left" is the left side of the picture.
struct ImageCoreFace {
    float rect[4];        ///< x, y, width, height
    float points[83][2];  ///< x, y
};

/// The host's face data: a head of three 32-bit words with `faceCount` entries of ImageCoreFace directly
/// behind it in memory. A faceCount below 1 means no face. The library sets no upper limit.
struct ImageCoreFaceInfo {
    int faceCount;
    unsigned int reserved[2];  ///< never read

    ImageCoreFace* faces() { return reinterpret_cast<ImageCoreFace*>(this + 1); }
    const ImageCoreFace* faces() const { return reinterpret_cast<const ImageCoreFace*>(this + 1); }
};

static_assert(sizeof(CGRect) == 16 && sizeof(zellab::Vector2f) == 8, "records are plain floats");
static_assert(sizeof(ImageCoreFaceInfo) == 12 && sizeof(ImageCoreFace) == 170 * sizeof(float),
              "a face entry follows the head without a gap");
