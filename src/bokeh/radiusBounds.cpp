#include "bokeh/radiusBounds.h"

#include <algorithm>
#include <vector>

#include "zellab/imageproc/core/parallelRows.h"

namespace zellab::Bokeh {

namespace {

constexpr auto kSmaller = [](Byte a, Byte b) { return a < b ? a : b; };
constexpr auto kLarger = [](Byte a, Byte b) { return a > b ? a : b; };

/// One row of the result: down the columns into `column`, which has `reach` bytes to either side, then along.
template <typename Choice>
void boundRow(const PlaneView<const Byte>& plane, int y, int reach, const Choice& choose, Byte* column,
              Byte* out) {
    const int width = plane.width;
    std::copy_n(plane.row(y), width, column);
    for (int ny = std::max(y - reach, 0); ny <= std::min(y + reach, plane.height - 1); ++ny) {
        const Byte* const row = plane.row(ny);
        for (int x = 0; x < width; ++x) column[x] = choose(column[x], row[x]);
    }
    std::fill_n(column - reach, reach, column[0]);
    std::fill_n(column + width, reach, column[width - 1]);
    std::copy_n(column, width, out);
    for (int shift = -reach; shift <= reach; ++shift)
        for (int x = 0; x < width; ++x) out[x] = choose(out[x], column[x + shift]);
}

}  // namespace

RadiusBounds boundsAround(const PlaneView<const Byte>& plane, int reach) {
    RadiusBounds bounds{{plane.width, plane.height}, {plane.width, plane.height}};
    parallelRows(plane.height, [&](int begin, int end) {
        std::vector<Byte> scratch(sampleCount(plane.width + 2 * reach, 1));
        for (int y = begin; y < end; ++y) {
            boundRow(plane, y, reach, kSmaller, scratch.data() + reach, bounds.least.row(y));
            boundRow(plane, y, reach, kLarger, scratch.data() + reach, bounds.most.row(y));
        }
    });
    return bounds;
}

}  // namespace zellab::Bokeh
