#include "beautykernel/inpainting/patchFillInpainter.h"

#include <algorithm>
#include <mutex>
#include <optional>

#include "beautykernel/inpainting/patchField.h"
#include "zellab/imageproc/poisson/markedBox.h"

namespace zellab {

namespace {

constexpr int kLargestRadius = 60;
constexpr int kMostPasses = 6;
constexpr double kShareKept = 0.75;    // of the targets, from one pass to the next, from the third pass on
constexpr double kShareChanged = 0.1;  // below this share of changed targets the work ends

/// The hole's box. Its height lacks the last row, and that asymmetry stays: a hole of one row is no hole.
struct HoleBox {
    int left, top, width, height;
};

std::optional<HoleBox> holeBox(PlaneView<const Byte> mask) {
    // A mask set at both ends is taken for one that covers the picture, unseen.
    if (mask.row(0)[0] != 0 && mask.row(mask.height - 1)[mask.width - 1] != 0)
        return HoleBox{0, 0, mask.width, mask.height - 1};
    const PixelBox box = markedBox(mask, 0);
    if (box.x.length() <= 1 && box.y.length() <= 1) return std::nullopt;
    return HoleBox{box.x.begin, box.y.begin, box.x.length(), box.y.length() - 1};
}

void fill(PatchField& field, const PatchFillParams& params) {
    std::size_t count = field.targetCount();
    for (int pass = 0; pass < std::clamp(params.passes, 1, kMostPasses); ++pass) {
        if (pass >= 2) count = static_cast<std::size_t>(static_cast<double>(count) * kShareKept);
        const std::size_t changes = field.runPass(count, pass == 0 ? params.firstTries : params.tries);
        if (static_cast<double>(changes) < static_cast<double>(count) * kShareChanged) break;
    }
}

}  // namespace

PatchFillInpainter& PatchFillInpainter::instance() {
    static PatchFillInpainter inpainter;
    return inpainter;
}

bool PatchFillInpainter::Run(ImageView image, PlaneView<const Byte> mask, const PatchFillParams& params) {
    if (params.radius <= 0 || !image.valid() || !mask.valid()) return false;
    const std::optional<HoleBox> hole = holeBox(mask);
    if (!hole || hole->height < 1) return false;

    const int radius = std::min(params.radius, kLargestRadius);
    const Span x = widen({hole->left, hole->left + hole->width}, radius, image.width);
    const Span y = widen({hole->top, hole->top + hole->height}, radius, image.height);
    const ImageView crop = image.crop(x.begin, y.begin, x.length(), y.length());

    // The runs draw on one random source: a second one that came between would take part of the first's
    // numbers.
    static std::mutex oneRun;
    const std::lock_guard<std::mutex> lock(oneRun);
    PatchField field(crop, mask.crop(x.begin, y.begin, x.length(), y.length()));
    field.orderTargets(hole->left - x.begin + hole->width / 2, hole->top - y.begin + hole->height / 2);
    fill(field, params);
    field.storeColours(crop);
    return true;
}

}  // namespace zellab
