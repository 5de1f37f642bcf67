#pragma once

#include <array>

#include "libzel/faces/faceFrame.h"
#include "trainingSet.h"

namespace zeltrain {

/// Other proportions for a drawn face, wider spread than those of the drawn people: parts of its height made
/// longer or shorter, levels of it wider or narrower.
class Proportions {
public:
    /// `toPicture` leads from the upright frame, in which the pupils are one unit apart, to the picture.
    Proportions(const zel::Landmarks& mean, const zel::Similarity& toPicture, unsigned seed);

    zellab::Vector2f operator()(zellab::Vector2f pixel) const;
    zellab::Vector2f back(zellab::Vector2f pixel) const;

private:
    static constexpr std::size_t kLevels = 8;
    using Levels = std::array<float, kLevels>;

    zel::Similarity m_toPicture, m_toFrame;
    Levels m_from{}, m_to{}, m_width{};  // heights in the frame, and how wide the face becomes there
};

}  // namespace zeltrain
