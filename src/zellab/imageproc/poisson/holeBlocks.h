#pragma once

#include <vector>

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Mask values above this are part of a hole.
constexpr int kHoleAbove = 254;

/// A block of the grid, in grid coordinates.
struct GridBlock {
    int x = 0, y = 0;
};

/// The grid of whole square blocks on a mask. What is left over at the right and at the bottom belongs to no
/// block.
struct BlockGrid {
    int blockSize = 1;          // pixels
    int columns = 0, rows = 0;  // whole blocks

    BlockGrid(int width, int height, int size)
        : blockSize(size), columns(width / size), rows(height / size) {}
    bool contains(GridBlock b) const { return b.x >= 0 && b.y >= 0 && b.x < columns && b.y < rows; }
    std::size_t index(GridBlock b) const {
        return static_cast<std::size_t>(b.y) * static_cast<std::size_t>(columns) +
               static_cast<std::size_t>(b.x);
    }
    std::size_t count() const { return sampleCount(columns, rows); }
};

/// The blocks that touch a hole, from the outside of the holes inwards: first, row by row, those whose 3 by 3
/// blocks to the right and below are not all hole blocks, then their neighbours (right, down, left, up) in
/// turn.
std::vector<GridBlock> holeBlocksFromOutside(PlaneView<const Byte> mask, const BlockGrid& grid);

}  // namespace zellab
