#pragma once

#include <optional>
#include <utility>

#include "libzel/effect.h"
#include "libzel/persons/subjectDepth.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zel {

/// What is near in a picture, and what of it stays sharp as a whole.
struct DefocusScene {
    zellab::Plane<unsigned char> depth;  // of any size, larger is nearer
    FaceSet faces;                       // the subject's
    const Mask* mask = nullptr;          // of the subject: the one that was given, or `found`; null: none
    const Mask* rim = nullptr;           // what the render's hair stage is told of it
    std::unique_ptr<Subject> found;

    zellab::PlaneView<const unsigned char> lights() const {
        return found ? std::as_const(found->lights).view() : zellab::PlaneView<const unsigned char>();
    }
};

/// The scene of a run of defocus that uses depth: what was given, and the rest by networks. Throws a Failure where
/// depth cannot be had.
DefocusScene defocusScene(EffectRun& run);

}  // namespace zel
