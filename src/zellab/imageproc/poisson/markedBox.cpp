#include "zellab/imageproc/poisson/markedBox.h"

#include <algorithm>

namespace zellab {

namespace {

/// The greatest sample of a row: a loop without a branch, which the compiler turns into wide instructions.
Byte greatest(const Byte* row, int width) {
    Byte most = 0;
    for (int x = 0; x < width; ++x) most = std::max(most, row[x]);
    return most;
}

}  // namespace

PixelBox markedBox(PlaneView<const Byte> mask, int above) {
    PixelBox box{{mask.width, 0}, {mask.height, 0}};
    const auto isMarked = [above](Byte m) { return m > above; };
    for (int y = 0; y < mask.height; ++y) {
        const Byte* row = mask.row(y);
        if (greatest(row, mask.width) <= above) continue;  // most rows
        const Byte* first = std::find_if(row, row + mask.width, isMarked);
        int end = mask.width;
        while (!isMarked(row[end - 1])) --end;
        box.x = {std::min(box.x.begin, static_cast<int>(first - row)), std::max(box.x.end, end)};
        box.y = {std::min(box.y.begin, y), y + 1};
    }
    return box;
}

Span widen(Span span, int margin, int size) {
    return {std::max(span.begin - margin, 0), std::min(span.end + margin, size)};
}

}  // namespace zellab
