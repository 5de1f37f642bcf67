#pragma once

#include <array>
#include <optional>

#include "beautykernel/skinmaskstatisdetector/skinFaceRecord.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace zellab {

/// Points of a face that the fleck cleaners read.
inline constexpr int kFleckPointCount = 171;

/// The part of a picture that a face covers.
struct FaceBox {
    int left = 0, top = 0, width = 0, height = 0;
};

/// The box of the face's outline, cut at the picture. Nothing for a box below 20 pixels on a side, for a face
/// outside the picture and for points that are not finite.
std::optional<FaceBox> faceBoxOf(const zelbeauty::SkinFaceRecord& face, int width, int height);

struct WorkingSize {
    int width, height;
};

/// The size at which a box is searched: its shorter side is `side` where both are larger, else its own.
WorkingSize workingSize(const FaceBox& box, int side);

/// A face cut out and scaled to its working size.
struct FaceCrop {
    FaceBox box;                // in the picture
    int width = 0, height = 0;  // of the working size
    RgbaImage pixels;
    Plane<Byte> mask;  // skin; a border of 5 pixels is 0
    std::array<Vector2f, kFleckPointCount> points;

    ImageView view() { return pixels.view(); }
    float toBoxX() const { return static_cast<float>(box.width) / static_cast<float>(width); }
    float toBoxY() const { return static_cast<float>(box.height) / static_cast<float>(height); }
};

/// Cuts the face out and scales it so that its shorter side is `side` at most. Nothing where faceBoxOf gives
/// nothing or the box is longer than the scaler takes.
std::optional<FaceCrop> cutFace(ConstImageView image, PlaneView<const Byte> skinMask,
                                const zelbeauty::SkinFaceRecord& face, int side, YuvFilter filter);

/// A box of a plane, scaled.
Plane<Byte> scaledBox(PlaneView<const Byte> plane, const FaceBox& box, int width, int height,
                      YuvFilter filter);

}  // namespace zellab
