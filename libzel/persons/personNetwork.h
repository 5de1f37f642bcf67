#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "libzel/faces/turnedSquare.h"
#include "libzel/networks/network.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zel {

/// Tells how far each pixel belongs to a person. It sees 256 by 256 samples of whatever it is shown, so that a
/// person who fills a small part of the picture is seen better in a look of its own. Any number of threads may use
/// one.
class PersonNetwork {
public:
    /// @param reason  one line, where nothing is returned
    static std::optional<PersonNetwork> load(const std::string& folder, std::string& reason);

    /// Shares of 0 to 1, of the picture's size: from one look at the whole of it, and one at each square, which is
    /// believed more in its middle and not at all at its border, where people are cut off.
    /// @param picture  opaque
    /// @param closer   upright squares within the picture
    /// Throws NetworkFailure.
    zellab::Plane<float> look(zellab::ConstImageView picture, const std::vector<TurnedSquare>& closer) const;

private:
    std::shared_ptr<Network> m_network;
};

}  // namespace zel
