#pragma once

#include <array>
#include <optional>
#include <vector>

#include "portrait/faces.h"
#include "zellab/imageproc/core/imageView.h"

namespace zel {

/// The middle one of many depths.
class DepthMedian {
public:
    void add(zellab::Byte depth) {
        ++m_histogram[depth];
        ++m_count;
    }
    int value() const { return rank(m_count / 2); }
    /// The depth that a quarter of them are below.
    int quarter() const { return rank(m_count / 4); }

private:
    int rank(int rest) const;

    std::array<int, 256> m_histogram{};
    int m_count = 0;
};

/// The middle depth of a face's inner half.
int depthOf(const Face& face, zellab::PlaneView<const zellab::Byte> depth);

/// Which of the faces belong to the subject: the largest one, or the one that is nearest to the focus, and with it
/// those that are about as large and as near, as people are who stand side by side. A face's size tells its distance
/// better than the depth network does, which takes one of three men abreast for much nearer than the others.
/// @param depth  of the picture, any size, larger is nearer
/// @param focus  fractions of the picture, where one was told
/// @return one for each face; none where there is no face
std::vector<bool> subjectFaces(const FaceSet& faces, zellab::PlaneView<const zellab::Byte> depth,
                               std::optional<zellab::Vector2f> focus);

/// Takes from a person mask all people but those with one of the faces, and who touch them.
/// @param shares   0 to 1, of the picture's proportions
void keepPeopleOf(const FaceSet& faces, zellab::PlaneView<float> shares);

/// Takes from a person mask what does not belong to the subject: the parts of other people, by whose face and
/// depth they are closer to, and people without a face that do not lie as near as the subject.
/// @param shares   as above
/// @param focus    as above: where nobody is in it, nothing is left
void keepSubject(zellab::PlaneView<float> shares, const FaceSet& faces, const std::vector<bool>& ofSubject,
                 zellab::PlaneView<const zellab::Byte> depth, std::optional<zellab::Vector2f> focus);

/// Takes from a person mask what lies so far before the subject that it is out of focus: leaves, a counter, a railing,
/// which the person network takes for the person. What the subject holds lies in its own plane.
/// @param faces  the subject's, one at least
void dropForeground(zellab::PlaneView<float> shares, const FaceSet& faces,
                    zellab::PlaneView<const zellab::Byte> depth);

/// Lets depth decide where the network is unsure: what is as near as the subject joins it, what lies far behind does
/// not. What the network is sure of stays, whatever its depth. Beside the cheeks, where ears and their rings are, which depth takes
/// for ground, unsure is enough.
/// @param faces  the subject's, one at least
void settleByDepth(zellab::PlaneView<float> shares, const FaceSet& faces,
                   zellab::PlaneView<const zellab::Byte> depth);

}  // namespace zel
