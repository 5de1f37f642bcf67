#pragma once

#include <memory>
#include <vector>

#include "portrait/faces.h"
#include "zel_effects/interFacePoint.h"
#include "zel_effects/zel_records.h"

/// Face data in the three forms that the library's calls take.

namespace zel {

/// The memory block of an ImageCoreFaceInfo: its head with the faces directly behind it. Fractions stay
/// fractions. A set without faces gives a valid block with a count of 0.
class FaceInfoBlock {
public:
    explicit FaceInfoBlock(const FaceSet& set);
    ImageCoreFaceInfo* get() { return reinterpret_cast<ImageCoreFaceInfo*>(m_words.data()); }

private:
    std::vector<float> m_words;  // floats, for their alignment: the record is made of 32-bit words
};

/// The landmark container for a picture of width by height pixels, with every face of the set added.
std::unique_ptr<zellab::CInterFacePoint> makeFacePoints(const FaceSet& set, int width, int height);

/// The face's rectangle in pixels of a picture of width by height.
CGRect faceRectInPixels(const Face& face, int width, int height);

}  // namespace zel
