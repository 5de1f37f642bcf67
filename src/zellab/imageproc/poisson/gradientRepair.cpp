#include "zellab/imageproc/poisson/gradientRepair.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/poisson/boxSolve.h"

namespace zellab {

namespace {

constexpr int kLentAbove = 128;    // mask values above this take the donor's gradients
constexpr float kRounding = 0.5f;  // the solved colours are rounded, not cut

void copyColours(Byte* to, const Byte* from) {
    std::copy_n(from, 3, to);
}

/// The crop with what belongs to it, owned.
struct Crop {
    RgbaImage pixels;
    Plane<Byte> mask;
    ImageView view() { return pixels.view(); }
};

/// The part of a span that lies in another, from the start of the first.
Span overlapFromStart(Span span, Span other) {
    const int begin = std::max(span.begin, other.begin), end = std::min(span.end, other.end);
    return {begin - span.begin, std::max(end, begin) - span.begin};
}

Crop cutOut(ConstImageView image, PlaneView<const Byte> mask, const PixelBox& box,
            const GradientRepair& repair) {
    const int w = box.x.length(), h = box.y.length();
    Crop crop{copyOf(image.crop(box.x.begin, box.y.begin, w, h)), Plane<Byte>(w, h)};
    const Span columns = overlapFromStart(box.x, repair.maskArea.x),
               rows = overlapFromStart(box.y, repair.maskArea.y);
    for (int y = rows.begin; y < rows.end; ++y) {
        const Byte* from = mask.row(box.y.begin + y) + box.x.begin;
        Byte* to = crop.mask.row(y);
        for (int x = columns.begin; x < columns.end; ++x)
            to[x] = from[x] > repair.anyMaskAbove ? Byte{255} : from[x];
    }
    return crop;
}

/// Walks from (x, y) by (dx, dy) to the first pixel outside the hole and copies its colour to the start.
void fillFromInside(ImageView crop, PlaneView<const Byte> mask, int x, int y, int dx, int dy) {
    for (int fx = x, fy = y; fx >= 0 && fy >= 0 && fx < crop.width && fy < crop.height; fx += dx, fy += dy) {
        if (mask.row(fy)[fx] > kHoleAbove) continue;
        copyColours(crop.at(x, y), crop.at(fx, fy));
        return;
    }
}

/// Where the crop's border is the picture's, a hole on it has no colour to be held to: it takes the nearest
/// inside.
void fillPictureBorder(ImageView crop, PlaneView<const Byte> mask, const PixelBox& box, int width,
                       int height) {
    const int right = crop.width - 1, bottom = crop.height - 1;
    for (int x = 0; x <= right; ++x)
        if (box.y.begin == 0) fillFromInside(crop, mask, x, 0, 0, 1);
    for (int x = 0; x <= right; ++x)
        if (box.y.end == height) fillFromInside(crop, mask, x, bottom, 0, -1);
    for (int y = 0; y <= bottom; ++y)
        if (box.x.begin == 0) fillFromInside(crop, mask, 0, y, 1, 0);
    for (int y = 0; y <= bottom; ++y)
        if (box.x.end == width) fillFromInside(crop, mask, right, y, -1, 0);
}

/// Turns the crop and its mask by 180 degrees.
void turn(Crop& crop) {
    const std::size_t count = crop.mask.size();
    Byte* pixels = crop.pixels.data();
    for (std::size_t i = 0, j = count - 1; i < j; ++i, --j)
        std::swap_ranges(pixels + 4 * i, pixels + 4 * i + 4, pixels + 4 * j);
    std::reverse(crop.mask.data(), crop.mask.data() + count);
}

/// Weight of the repair in 1/256. Percentages outside 0..100 are limited to it.
int blendWeight(int percent) {
    return static_cast<int>(std::sqrt(static_cast<float>(std::clamp(percent, 0, 100)) / 100.0f) * 256.0f);
}

void blend(ImageView image, ConstImageView repaired, int weight) {
    for (int y = 0; y < image.height; ++y) {
        Byte* row = image.row(y);
        const Byte* from = repaired.row(y);
        for (int x = 0; x < 4 * image.width; ++x)
            if (x % 4 != 3) row[x] = static_cast<Byte>((from[x] * weight + row[x] * (256 - weight)) >> 8);
    }
}

}  // namespace

bool repairByGradients(ImageView image, PlaneView<const Byte> mask, const GradientRepair& repair) {
    const Span x = widen(repair.hole.x, repair.margin, image.width),
               y = widen(repair.hole.y, repair.margin, image.height);
    if (x.length() < 3 || y.length() < 3) return false;
    const PixelBox box{growToTransformSize(x, image.width), growToTransformSize(y, image.height)};

    Crop crop = cutOut(image, mask, box, repair);
    fillPictureBorder(crop.view(), crop.mask.view(), box, image.width, image.height);
    // Blocks are laid from the upper left corner, and what is over at the right and below belongs to none. A
    // rectangle that only touches the far edges is turned, so that its border is treated like that at the
    // near ones.
    const bool turned =
        (box.y.end == image.height || box.x.end == image.width) && box.y.begin > 0 && box.x.begin > 0;
    if (turned) turn(crop);

    GradientField field(crop.view());
    repair.exchange(crop.view(), crop.mask.view(), field);
    solveInterior(crop.view(), kRounding,
                  [&field](int px, int py, int channel) { return field.divergence(px, py, channel); });

    if (turned) turn(crop);
    blend(image.crop(box.x.begin, box.y.begin, box.x.length(), box.y.length()), crop.view(),
          blendWeight(repair.percent));
    return true;
}

void lendGradients(PlaneView<const Byte> mask, const BlockGrid& grid, GridBlock hole, GridBlock donor,
                   const GradientField& before, GradientField& after,
                   const std::function<void(int, int)>& onDonor) {
    const int size = grid.blockSize, x0 = hole.x * size, y0 = hole.y * size;
    const int toDonorX = (donor.x - hole.x) * size, toDonorY = (donor.y - hole.y) * size;
    const auto forEachHolePixel = [&](const auto& visit) {
        for (int y = y0; y < y0 + size; ++y)
            for (int x = x0; x < x0 + size; ++x)
                if (mask.row(y)[x] > kLentAbove) visit(x, y);
    };

    std::array<int, 3> right{}, down{};
    int count = 0;
    forEachHolePixel([&](int x, int y) {
        const GradientField::Sample& sample = before.at(x + toDonorX, y + toDonorY);
        for (std::size_t c = 0; c < 3; ++c) {
            right[c] += sample.right[c];
            down[c] += sample.down[c];
        }
        ++count;
    });
    if (count == 0) return;
    forEachHolePixel([&](int x, int y) {
        const GradientField::Sample& sample = before.at(x + toDonorX, y + toDonorY);
        GradientField::Sample& target = after.at(x, y);
        for (std::size_t c = 0; c < 3; ++c) {
            target.right[c] = static_cast<std::int16_t>(sample.right[c] - right[c] / count);
            target.down[c] = static_cast<std::int16_t>(sample.down[c] - down[c] / count);
        }
        if (onDonor) onDonor(x + toDonorX, y + toDonorY);
    });
}

}  // namespace zellab
