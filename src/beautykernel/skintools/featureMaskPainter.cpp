#include "beautykernel/skintools/featureMaskPainter.h"

#include <initializer_list>
#include <vector>

#include "zellab/imageproc/shapes/polygonFill.h"

namespace zellab {

namespace {

std::vector<Vector2f> pointRun(const Vector2f* points, int first, int last) {
    return {points + first, points + last + 1};
}

std::vector<Vector2f> pointList(const Vector2f* points, std::initializer_list<int> positions) {
    std::vector<Vector2f> list;
    for (const int position : positions) list.push_back(points[position]);
    return list;
}

}  // namespace

bool CFeatureMaskPainter::Paint(PlaneView<Byte> mask, const Vector2f* points, int flags, Byte value,
                                Hull* hull) {
    if (!mask.valid() || !points || flags == 0) return false;
    const auto fill = [&](const std::vector<Vector2f>& region) {
        FillPolygonMask(mask, hull(region), value);
    };
    if (flags & kBrows) {
        fill(pointRun(points, 20, 29));
        fill(pointRun(points, 30, 39));
    }
    if (flags & kEyes) {
        fill(pointRun(points, 0, 9));
        fill(pointRun(points, 10, 19));
    }
    if (flags & kNose) fill(pointList(points, {44, 48, 47, 153, 155, 157}));
    if (flags & kMouth) fill(pointRun(points, 50, 79));
    return true;
}

}  // namespace zellab
