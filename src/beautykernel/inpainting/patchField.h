#pragma once

#include <cstdint>
#include <vector>

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// The crop that one patch filling works on: its cells, those to fill (targets) in the order of the work, and
/// those to take colours from (sources). A cell is its index in a grid that has kMargin cells around the crop, so
/// that no neighbour lies outside.
class PatchField {
public:
    /// @param image  the crop; targets are written back to it by storeColours
    /// @param mask   the crop's mask, non-zero in the hole
    PatchField(ConstImageView image, PlaneView<const Byte> mask);

    /// Orders the targets from the rim towards (centreX, centreY), so that a crowded direction weighs less,
    /// and then shuffles them a little with rand().
    void orderTargets(int centreX, int centreY);

    std::size_t targetCount() const { return m_targets.size(); }

    /// Works through the first `count` targets once, with that many random tries each. @return targets that
    /// changed
    std::size_t runPass(std::size_t count, int tries);

    void storeColours(ImageView image) const;

private:
    static constexpr int kMargin = 5;  // as far as neighbours are looked for
    /// What a cell's colour has beside red, green and blue, from the low byte up: whether it lay outside the hole
    /// from the start, and whether it has a colour.
    static constexpr std::uint32_t kSource = 1u << 24, kKnown = 1u << 25;
    static constexpr std::uint32_t kColour = kSource - 1;

    struct Neighbour {
        std::int32_t step;  // from the cell to it
        std::uint32_t colour;
        std::int32_t source;
    };
    struct Best {
        std::int32_t cell = -1;
        std::int32_t cost;
    };

    bool isSource(std::int32_t cell) const {
        return (m_cells[static_cast<std::size_t>(cell)] & kSource) != 0;
    }
    int xOf(std::int32_t cell) const { return cell % m_pitch - kMargin; }
    int yOf(std::int32_t cell) const { return cell / m_pitch - kMargin; }

    int collectNeighbours(std::int32_t target, Neighbour* neighbours) const;
    void evaluate(std::int32_t candidate, const Neighbour* neighbours, int count, Best& best) const;
    Best findBest(std::int32_t target, int tries) const;

    int m_pitch;  // cells from a row to the next
    std::vector<std::uint32_t> m_cells;
    std::vector<std::int32_t> m_taken;  // cell whose colour was taken, -1 while none
    std::vector<std::int32_t> m_targets, m_sources;
};

}  // namespace zellab
