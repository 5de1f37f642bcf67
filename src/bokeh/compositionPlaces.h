#pragma once

#include <array>
#include <cstdint>
#include <vector>

namespace zellab::Bokeh {

/// Where the pixels of a photograph and their neighbours lie in the working picture, along one axis.
class CompositionAxis {
public:
    static constexpr int kRadiusReach = 2;  // taps to each side when the radius is read
    static constexpr int kSmallReach = 4;   // of the largest small kernel

    /// @param radiusSpacing, smallSpacing  pixels between taps
    CompositionAxis(int photograph, int working, float radiusSpacing, float smallSpacing);

    /// A neighbour of all pixels.
    struct Tap {
        int shift = 0;            // whole pixels to it, rounded down
        float part = 0.0f;        // and the rest of the way
        std::vector<int> places;  // its working pixel, for each pixel
    };
    const Tap& radiusTap(int tap) const { return m_radius[static_cast<std::size_t>(tap + kRadiusReach)]; }
    const Tap& smallTap(int tap) const { return m_small[static_cast<std::size_t>(tap + kSmallReach)]; }
    const std::vector<int>& places() const { return radiusTap(0).places; }
    /// Pixels to the farthest neighbour.
    int farthest() const { return m_farthest; }

    /// The working pixel whose middle lies before the pixel's, -1 for the first ones, and the share of the next.
    int corner(int i) const { return m_corners[static_cast<std::size_t>(i)]; }
    float part(int i) const { return m_parts[static_cast<std::size_t>(i)]; }
    /// The weights of both, of sum 1 << kWeightBits.
    const std::int16_t* weights(int i) const { return m_weights.data() + 2 * static_cast<std::size_t>(i); }

    /// Working pixels from a pixel's own to the farthest that its taps or corners read.
    int reach() const { return m_reach; }

private:
    std::array<Tap, 2 * kRadiusReach + 1> m_radius;
    std::array<Tap, 2 * kSmallReach + 1> m_small;
    std::vector<int> m_corners;
    std::vector<float> m_parts;
    std::vector<std::int16_t> m_weights;
    int m_reach, m_farthest;
};

}  // namespace zellab::Bokeh
