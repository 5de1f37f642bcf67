#pragma once

#include <functional>
#include <optional>
#include <string>

#include "depth/portraitDepth.h"
#include "libzel/persons/personMask.h"

namespace zel {

/// Whether a mask of the subject's people is made.
enum class SubjectWish {
    automatic,  // where networks are installed and there is a face
    person,     // also without a face
    none,
};

/// What the search for a subject is told.
struct SubjectQuestion {
    SubjectWish wish = SubjectWish::automatic;
    const FaceSet& faces;
    std::optional<zellab::Vector2f> focus;  // fractions of the picture, where one was told
    const std::string& assets;
};

/// The subject of a picture with that depth, as it was wished for; says in the log why there is none.
std::optional<Subject> subjectFor(zellab::ConstImageView picture, zellab::PlaneView<const zellab::Byte> depth,
                                  const SubjectQuestion& question);

/// Raises the subject in a refined depth to where its nearest face is, or its own middle depth where it has none: no
/// part of it then lies in the background, and a group lies in one plane. What is not the subject is no nearer than the
/// depth that was refined without its mask has it: the mask draws lamps beside a face forward that have its colour.
/// @param faces   the subject's
/// @param lights  as depthOfLights has them, or none
void levelSubject(zellab::PortraitDepthPlanes& planes, const Mask& mask, const FaceSet& faces,
                  zellab::PlaneView<const zellab::Byte> lights);

}  // namespace zel
