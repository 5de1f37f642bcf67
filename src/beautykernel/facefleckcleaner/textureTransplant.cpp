#include "beautykernel/facefleckcleaner/textureTransplant.h"

#include <algorithm>

#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

namespace {

constexpr int kTreated = -255;

RgbaImage blurred(ConstImageView block, int radius) {
    RgbaImage copy = copyOf(block);
    StackBlurRGBA(copy.view(), radius);
    return copy;
}

int blurRadius(ConstImageView crop) {
    const float share = static_cast<float>(std::min(crop.width, crop.height)) * 0.008f;
    return static_cast<int>(std::max(std::min(share, 15.0f), 3.0f));
}

FleckRecord recordOf(const FleckRect& box, ConstImageView crop) {
    const int marginRows = std::clamp(crop.height / 100, 1, 5);
    const int marginColumns = std::clamp(crop.width / 100, 1, 5);
    FleckRecord record;
    record.left = std::max(box.left - marginColumns, 0);
    record.top = std::max(box.top - marginRows, 0);
    record.width = std::min(box.right + marginColumns, crop.width - 1) - record.left + 1;
    record.height = std::min(box.bottom + marginRows, crop.height - 1) - record.top + 1;
    record.area = record.width * record.height;
    return record;
}

/// Whether the fleck reaches one of the pixels around (x, y). What was treated has lost its label.
bool touches(PlaneView<const int> labels, int x, int y, int label) {
    for (int ny = std::max(y - 1, 0); ny <= std::min(y + 1, labels.height - 1); ++ny)
        for (int nx = std::max(x - 1, 0); nx <= std::min(x + 1, labels.width - 1); ++nx)
            if (labels.row(ny)[nx] == label) return true;
    return false;
}

void transplant(ImageView crop, PlaneView<int> labels, const FleckRect& box, int label, DonorDirection step) {
    const int w = box.width(), h = box.height(), radius = blurRadius(crop);
    const RgbaImage repair = blurred(crop.crop(box.left, box.top, w, h), radius);
    // A block that fitted at the working size can lie a pixel outside at full resolution: it is moved inside.
    const RgbaImage donor = copyOf(crop.crop(std::clamp(box.left + step.x * w, 0, crop.width - w),
                                             std::clamp(box.top + step.y * h, 0, crop.height - h), w, h));
    const RgbaImage smoothDonor = blurred(donor.view(), radius);
    for (int y = 0; y < h; ++y) {
        const Byte *d = donor.row(y), *e = smoothDonor.row(y), *a = repair.row(y);
        Byte* out = crop.at(box.left, box.top + y);
        int* l = labels.row(box.top + y) + box.left;
        for (int x = 0; x < w; ++x) {
            const bool inFleck = l[x] == label;
            if (!inFleck && !touches(labels, box.left + x, box.top + y, label)) continue;
            for (int c = 4 * x; c < 4 * x + 3; ++c) out[c] = clampToByte(d[c] - e[c] + a[c]);
            if (inFleck) l[x] = kTreated;
        }
    }
}

}  // namespace

std::vector<FleckRecord> TransplantTexture(ImageView crop, PlaneView<int> labels,
                                           const std::vector<FleckRect>& flecks,
                                           const std::vector<DonorDirection>& directions) {
    std::vector<FleckRecord> records;
    for (std::size_t i = 0; i < flecks.size(); ++i) {
        records.push_back(recordOf(flecks[i], crop));
        transplant(crop, labels, flecks[i], static_cast<int>(i) + 1, directions[i]);
    }
    return records;
}

}  // namespace zellab
