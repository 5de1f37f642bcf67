#include "beautykernel/facefleckcleaner/fleckRepair.h"

#include <algorithm>

#include "beautykernel/facefleckcleaner/donorDirection.h"
#include "beautykernel/facefleckcleaner/fleckFill.h"
#include "beautykernel/facefleckcleaner/textureTransplant.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab {

namespace {

constexpr int kBorder = 5;  // pixels along the box's edge that carry no label

/// Flecks keep their labels where there is any mask; the rest becomes minus the mask.
void markSkin(PlaneView<int> labels, PlaneView<const Byte> mask) {
    for (int y = 0; y < labels.height; ++y) {
        int* row = labels.row(y);
        const Byte* m = mask.row(y);
        for (int x = 0; x < labels.width; ++x)
            if (m[x] == 0 || row[x] < 1) row[x] = -m[x];
    }
}

/// First position of a span, from the working size to the box.
int firstInBox(int position, float scale) {
    return static_cast<int>(std::max((static_cast<float>(position) - 0.5f) * scale + 0.5f, 0.0f));
}

/// Last position of a span.
int lastInBox(int position, float scale, int size) {
    return static_cast<int>(
        std::min((static_cast<float>(position) + 0.5f) * scale + 0.5f, static_cast<float>(size - 1)));
}

/// For every position of the box the nearest one of the working size.
std::vector<int> nearestPositions(int boxSize, int workSize) {
    std::vector<int> nearest(static_cast<std::size_t>(boxSize));
    for (int i = 0; i < boxSize; ++i) {
        const float at = static_cast<float>(i) * static_cast<float>(workSize) / static_cast<float>(boxSize);
        // Half a pixel more reaches past the end on the last positions.
        nearest[static_cast<std::size_t>(i)] = std::min(static_cast<int>(at + 0.5f), workSize - 1);
    }
    return nearest;
}

Plane<int> enlargedLabels(PlaneView<const int> labels, const std::vector<int>& columns,
                          const std::vector<int>& rows) {
    const int width = static_cast<int>(columns.size()), height = static_cast<int>(rows.size());
    Plane<int> enlarged(width, height);
    const PlaneView<int> out = enlarged.view();
    parallelRows(height, [&](int begin, int end) {
        for (int y = std::max(begin, kBorder); y < std::min(end, height - kBorder); ++y) {
            const int* from = labels.row(rows[static_cast<std::size_t>(y)]);
            int* to = out.row(y);
            for (int x = kBorder; x < width - kBorder; ++x)
                to[x] = from[columns[static_cast<std::size_t>(x)]];
        }
    });
    return enlarged;
}

/// Copies the colours of the filled flecks into the picture.
void paste(ImageView face, PlaneView<const int> labels, const std::vector<FleckRect>& flecks,
           ConstImageView filled, const std::vector<int>& columns, const std::vector<int>& rows) {
    for (std::size_t i = 0; i < flecks.size(); ++i)
        for (int y = flecks[i].top; y <= flecks[i].bottom; ++y)
            for (int x = flecks[i].left; x <= flecks[i].right; ++x) {
                if (labels.row(y)[x] != static_cast<int>(i) + 1) continue;
                const Byte* from =
                    filled.at(columns[static_cast<std::size_t>(x)], rows[static_cast<std::size_t>(y)]);
                std::copy_n(from, 3, face.at(x, y));
            }
}

}  // namespace

FleckRepair repairFlecks(ImageView image, FaceCrop& crop, FoundFlecks found) {
    markSkin(found.labels.view(), crop.mask.view());
    FillFlecks(crop.view(), found.labels.view(), found.boxes);
    const std::vector<DonorDirection> directions = ChooseDonorDirections(crop.view(), found.boxes);

    for (FleckRect& r : found.boxes)
        r = {firstInBox(r.top, crop.toBoxY()), lastInBox(r.bottom, crop.toBoxY(), crop.box.height),
             firstInBox(r.left, crop.toBoxX()), lastInBox(r.right, crop.toBoxX(), crop.box.width)};
    const std::vector<int> columns = nearestPositions(crop.box.width, crop.width);
    const std::vector<int> rows = nearestPositions(crop.box.height, crop.height);
    const ImageView face = image.crop(crop.box.left, crop.box.top, crop.box.width, crop.box.height);

    FleckRepair repair;
    repair.labels = enlargedLabels(found.labels.view(), columns, rows);
    paste(face, repair.labels.view(), found.boxes, crop.view(), columns, rows);
    repair.records = TransplantTexture(face, repair.labels.view(), found.boxes, directions);
    for (FleckRecord& record : repair.records) {
        record.left += crop.box.left;
        record.top += crop.box.top;
    }
    std::stable_sort(repair.records.begin(), repair.records.end(),
                     [](const FleckRecord& a, const FleckRecord& b) { return a.area < b.area; });
    return repair;
}

}  // namespace zellab
