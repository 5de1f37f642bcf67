#pragma once

#include <optional>
#include <string>
#include <vector>

#include "portrait/faces.h"
#include "portrait/image.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zel {

/// What depth of field keeps sharp as a whole, whatever the depth network takes its parts for.
struct Subject {
    Mask mask;                           // of the picture's proportions, at most kMaskSide pixels a side
    Mask rim;                            // the same with its stray hair: what keeps the photograph
    std::vector<bool> ofFaces;           // for each face that was given, whether it is the subject's
    zellab::Plane<zellab::Byte> lights;  // of the ground: see depthOfLights
};

/// The faces that are the subject's.
FaceSet facesOf(const Subject& subject, const FaceSet& faces);

inline zellab::PlaneView<const zellab::Byte> viewOf(const Mask& mask) {
    return {mask.samples.data(), mask.width, mask.height};
}

/// Longest side of a person mask in pixels: what the network sees is coarser by far, and the edges come from a
/// picture of this size.
inline constexpr int kMaskSide = 1536;

/// All people in the picture, or those who have a face of the set or touch one who has.
/// @param faces   null: all people
/// @param reason  one line, where nothing is returned: there is no such network, or it fails
std::optional<Mask> personMask(zellab::ConstImageView picture, const FaceSet* faces,
                               const std::string& assets, std::string& reason);

/// The people of the subject: see subjectChoice.h.
/// @param depth  of the picture, any size, larger is nearer
/// @param focus  fractions of the picture, where one was told
/// @param reason  one line, where nothing is returned: there is no such network, it fails, or nobody is in focus
std::optional<Subject> findSubject(zellab::ConstImageView picture, const FaceSet& faces,
                                   zellab::PlaneView<const zellab::Byte> depth,
                                   std::optional<zellab::Vector2f> focus, const std::string& assets,
                                   std::string& reason);

}  // namespace zel
