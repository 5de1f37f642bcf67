#include "zellab/imageproc/poisson/holeBlocks.h"

#include <algorithm>

namespace zellab {

namespace {

bool touchesHole(PlaneView<const Byte> block) {
    for (int y = 0; y < block.height; ++y) {
        const Byte* row = block.row(y);
        if (std::any_of(row, row + block.width, [](Byte m) { return m > kHoleAbove; })) return true;
    }
    return false;
}

}  // namespace

std::vector<GridBlock> holeBlocksFromOutside(PlaneView<const Byte> mask, const BlockGrid& grid) {
    const int size = grid.blockSize;
    std::vector<char> isHole(grid.count());
    for (int y = 0; y < grid.rows; ++y)
        for (int x = 0; x < grid.columns; ++x)
            isHole[grid.index({x, y})] = touchesHole(mask.crop(x * size, y * size, size, size));

    // Blocks beyond the grid count as open, so a hole at its right or lower end starts from there.
    const auto isSurrounded = [&](GridBlock b) {
        for (int y = b.y; y < b.y + 3; ++y)
            for (int x = b.x; x < b.x + 3; ++x)
                if (!grid.contains({x, y}) || !isHole[grid.index({x, y})]) return false;
        return true;
    };

    std::vector<GridBlock> list;
    std::vector<char> isListed(grid.count());
    const auto append = [&](GridBlock b) {
        if (!grid.contains(b) || !isHole[grid.index(b)] || isListed[grid.index(b)]) return;
        isListed[grid.index(b)] = 1;
        list.push_back(b);
    };
    for (int y = 0; y < grid.rows; ++y)
        for (int x = 0; x < grid.columns; ++x)
            if (!isSurrounded({x, y})) append({x, y});
    // NOLINTNEXTLINE(modernize-loop-convert): the list grows on the way
    for (std::size_t i = 0; i < list.size(); ++i) {
        const GridBlock b = list[i];
        for (const GridBlock next : {GridBlock{b.x + 1, b.y}, GridBlock{b.x, b.y + 1},
                                     GridBlock{b.x - 1, b.y}, GridBlock{b.x, b.y - 1}})
            append(next);
    }
    return list;
}

}  // namespace zellab
