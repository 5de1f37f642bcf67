#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>

#include "libzel/faces/colourPyramid.h"
#include "libzel/networks/network.h"

namespace zel {

constexpr std::size_t kMeshPoints = 468;

/// The surface of a face as numbered points, in pixels of the picture. Which number lies where is told in
/// meshLandmarks.cpp; 33 and 263 are the outer corners of the eyes at the picture's left and right.
struct FaceMesh {
    std::array<zellab::Vector2f, kMeshPoints> points{};
    std::optional<std::array<zellab::Vector2f, 2>> irises;  // their middles, at the picture's left and right
    float presence = 0;                                     // 0 to 1: whether there is a face at all

    /// For another look: about all points, half as large again, eyes level.
    TurnedSquare square() const;
    bool isFinite() const;
};

extern const NetworkKind kFaceMeshKind;

/// The mesh of the face in a sound square. Throws NetworkFailure.
FaceMesh fitMesh(Network& network, const ColourPyramid& picture, const TurnedSquare& square);

/// Four networks that place the mesh more finely: one for all, and three that see a part of what it saw, at the
/// lips and at each eye with its brow. They find irises, but do not tell whether there is a face.
class RefinedMesh {
public:
    /// @param reason  one line, where nothing is returned
    static std::optional<RefinedMesh> load(const std::string& folder, std::string& reason);

    /// As fitMesh; `presence` is 0.
    FaceMesh fit(const ColourPyramid& picture, const TurnedSquare& square) const;

private:
    std::shared_ptr<Network> m_whole;
    std::array<std::shared_ptr<Network>, 3> m_parts;  // lips, left eye, right eye
};

/// Samples of a part's window, taken from the whole's features. For tests.
/// @param features  kFeatureChannels planes of kFeatureSide by kFeatureSide
/// @param origin    of the window in the features, in their samples: its top left corner
/// @param right, down  its sides
/// @return kFeatureChannels planes of kPartSide by kPartSide; zero beyond the features
std::vector<float> partOfFeatures(const std::vector<float>& features, zellab::Vector2f origin,
                                  zellab::Vector2f right, zellab::Vector2f down);
constexpr int kFeatureChannels = 32, kFeatureSide = 48, kPartSide = 16;

}  // namespace zel
