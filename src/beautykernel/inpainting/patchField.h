#pragma once

#include <cstdint>
#include <vector>

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// The crop that one patch filling works on: its cells, those to fill (targets) in the order of the work, and
/// those to take colours from (sources). A cell is its index, row after row.
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
    struct Cell {
        std::int32_t source = -1;  // cell whose colour was taken, -1 while none
        bool known = false;        // has a colour
        bool isSource = false;     // lay outside the hole from the start
    };
    struct Neighbour {
        int dx, dy;
        std::uint32_t colour;
        std::int32_t source;
    };
    struct Best {
        std::int32_t cell = -1;
        std::int32_t cost;
    };

    bool contains(int x, int y) const { return x >= 0 && y >= 0 && x < m_width && y < m_height; }
    std::int32_t indexOf(int x, int y) const { return y * m_width + x; }
    int xOf(std::int32_t cell) const { return cell % m_width; }
    int yOf(std::int32_t cell) const { return cell / m_width; }

    int collectNeighbours(std::int32_t target, Neighbour* neighbours) const;
    void evaluate(std::int32_t candidate, const Neighbour* neighbours, int count, Best& best) const;
    Best findBest(std::int32_t target, int tries) const;

    int m_width, m_height;
    std::vector<Cell> m_cells;
    std::vector<std::uint32_t> m_colours;  // red, green, blue from the low byte up
    std::vector<std::int32_t> m_targets, m_sources;
};

}  // namespace zellab
