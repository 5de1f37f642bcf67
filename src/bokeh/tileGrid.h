#pragma once

#include <algorithm>

namespace zellab::Bokeh {

/// A rectangle of the working picture that is convolved in one step, in pixels.
struct Tile {
    int x, y, width, height;
};

/// The working picture cut into tiles of 256 by 256, row by row; those at the far edges may be smaller.
class TileGrid {
public:
    static constexpr int kSide = 256;  // pixels

    TileGrid(int width, int height)
        : m_width(width),
          m_height(height),
          m_across(tilesAlong(width)),
          m_count(m_across * tilesAlong(height)) {}

    int across() const { return m_across; }
    int count() const { return m_count; }
    Tile tile(int number) const {
        const int x = std::clamp(kSide * (number % m_across), 0, m_width - 1);
        const int y = std::clamp(kSide * (number / m_across), 0, m_height - 1);
        return {x, y, std::min(x + kSide, m_width) - x, std::min(y + kSide, m_height) - y};
    }

private:
    static int tilesAlong(int length) { return length > 0 ? (length - 1) / kSide + 1 : 0; }

    int m_width, m_height, m_across, m_count;
};

}  // namespace zellab::Bokeh
