#pragma once

#include <vector>

namespace zellab {

/// The overlay blend of two bytes, from the style asset "style/base/PSOverlay.bin".
class OverlayTable {
public:
    /// Loads the asset. @return false where it is missing or holds fewer than 256 by 256 entries
    bool load();

    bool isLoaded() const { return !m_values.empty(); }

    /// Overlay of base a and blend b.
    unsigned char operator()(int a, int b) const {
        return m_values[static_cast<std::size_t>(a) * 256 + static_cast<std::size_t>(b)];
    }

private:
    std::vector<unsigned char> m_values;
};

}  // namespace zellab
