#pragma once

#include <memory>
#include <optional>
#include <string>

#include "libzel/faces/faceMesh.h"
#include "portrait/faces.h"

namespace zel {

/// Finds faces and places their landmarks by networks, whatever their pose. Any number of threads may use one.
class NetworkFinder {
public:
    /// The detector and the mesh must be in the folder; the refined mesh is used where it is.
    /// @param reason  one line: why nothing is returned, or why the mesh is not refined; else empty
    static std::optional<NetworkFinder> load(const std::string& folder, std::string& reason);

    /// The faces, the largest first; their confidence tells how sure the networks are that each is one.
    /// Throws NetworkFailure.
    FaceSet find(zellab::ConstImageView picture) const;

    bool refines() const { return m_refined.has_value(); }

private:
    std::shared_ptr<Network> m_detector, m_mesh;
    std::optional<RefinedMesh> m_refined;
};

}  // namespace zel
