#include "beautykernel/skinmaskstatisdetector/skinMaskStatisDetector.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "beautykernel/skinmaskstatisdetector/skinModel.h"
#include "frame/zel_log.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zelbeauty {

namespace {

using zellab::Byte;

constexpr int kLeftPupil = 169, kRightPupil = 170, kNoseCentre = 48;
constexpr int kDefaultCb = 110, kDefaultCr = 148;  // skin without a face to learn from
constexpr float kTail = 0.006f;                    // share of the brightness histogram cut at either end

/// Columns [left, right) and rows [top, bottom).
struct Area {
    int left, top, right, bottom;
    bool empty() const { return left >= right || top >= bottom; }
};

/// Truncates a landmark coordinate; values that fit no picture are limited.
int truncated(float v) {
    return v >= -1e9f && v <= 1e9f ? static_cast<int>(v) : 0;
}

/// The cheeks between the pupils and the nose.
Area patchBelowEyes(int width, int height, const SkinFaceRecord& face) {
    const int eye1 = truncated(face.points[kLeftPupil].x), eye2 = truncated(face.points[kRightPupil].x);
    const int eyeRow = truncated(face.points[kLeftPupil].y);
    const int quarter = (eye2 - eye1) / 4;
    Area patch{};
    patch.bottom = std::clamp(truncated(face.points[kNoseCentre].y), 0, height - 1);
    patch.top = std::clamp((patch.bottom - eyeRow) / 4 + eyeRow, 0, height - 1);
    patch.left = std::clamp(std::max(eye1 - quarter, face.left), 0, width - 1);
    patch.right = std::min(std::max(std::min(eye2 + quarter, face.right - 1), 0), width - 1);
    return patch;
}

/// The face box less a tenth on each side.
Area statisticsBox(int width, int height, const SkinFaceRecord& face) {
    const int h = face.bottom - face.top, w = face.right - face.left;
    const auto share = [](float part, int of) { return static_cast<int>(part * static_cast<float>(of)); };
    const int top = std::clamp(face.top + share(0.1f, h), 0, height - 1);
    const int left = std::clamp(face.left + share(0.1f, w), 0, width - 1);
    int rows = h - share(0.2f, h), columns = w - share(0.2f, w);
    if (top + rows >= height) rows = height - top - 1;
    if (left + columns >= width) columns = width - left - 1;
    return {left, top, left + columns, top + rows};
}

/// Calls visit(y, cb, cr) for the pixels of an area.
template <typename Visit>
void forEachPixel(const YCbCrView& picture, const Area& area, const Visit& visit) {
    for (int y = area.top; y < area.bottom; ++y) {
        const Byte *luma = picture.y.row(y), *cb = picture.cb.row(y), *cr = picture.cr.row(y);
        for (int x = area.left; x < area.right; ++x) visit(luma[x], cb[x], cr[x]);
    }
}

/// Brightness range of a histogram without its tails, the upper end at most `highest`.
void rangeOf(const std::array<std::int64_t, 256>& histogram, std::int64_t total, int highest, int& low,
             int& high) {
    std::array<float, 256> share{};
    std::int64_t sum = 0;
    for (std::size_t i = 0; i < 256; ++i) {
        sum += histogram[i];
        share[i] = static_cast<float>(sum) / static_cast<float>(total);
    }
    high = 255;
    while (high > 0 && 1.0f - share[static_cast<std::size_t>(high - 1)] < kTail) --high;
    high = std::min(high, highest);
    low = 0;
    while (low < 255 && share[static_cast<std::size_t>(low)] < kTail &&
           share[static_cast<std::size_t>(low + 1)] < kTail)
        ++low;
    low = std::min(low, high);
}

/// Without a face: the middle half of the picture's brightness, widened.
SkinStatistics statisticsOfPicture(zellab::PlaneView<const Byte> luma) {
    std::array<std::int64_t, 256> histogram{};
    for (int y = 0; y < luma.height; ++y)
        for (int x = 0; x < luma.width; ++x) ++histogram[luma.row(y)[x]];
    const auto quarter =
        static_cast<std::int64_t>(0.25 * static_cast<double>(zellab::sampleCount(luma.width, luma.height)));
    std::size_t lower = 0, upper = 255;
    for (std::int64_t sum = histogram[0]; sum < quarter && lower < 255;) sum += histogram[++lower];
    for (std::int64_t sum = histogram[255]; sum < quarter && upper > 0;) sum += histogram[--upper];
    std::int64_t sum = 0, pixels = 0;
    for (std::size_t i = lower; i <= upper; ++i) {
        sum += histogram[i] * static_cast<std::int64_t>(i);
        pixels += histogram[i];
    }
    // A picture whose quarters cross (a few pixels) has no middle half: black serves.
    const float mean = pixels > 0 ? static_cast<float>(sum) / static_cast<float>(pixels) : 0.0f;
    return {kDefaultCb, kDefaultCr, static_cast<int>(mean * 0.65f),
            std::min(static_cast<int>(mean * 1.2f), 255), false};
}

}  // namespace

FaceColour SkinMaskStatisDetector::GetFaceColorYuv(const YCbCrView& picture, const SkinFaceRecord& face) {
    ZEL_LOG_DEBUG("+++SkinMaskStatisDetector::GetFaceColorYuv+++");
    FaceColour colour;
    const int width = picture.y.width, height = picture.y.height;
    const Area patch = patchBelowEyes(width, height, face), box = statisticsBox(width, height, face);
    if (patch.empty() || box.empty()) {
        ZEL_LOG_ERROR("SkinMaskStatisDetector::GetFaceColorYuv:: Face Size is illegal!");
        return colour;
    }
    std::int64_t sum = 0, count = 0;
    forEachPixel(picture, patch, [&](Byte y, Byte, Byte) {
        sum += y;
        ++count;
    });
    const int average = static_cast<int>(sum / count);
    const int floor = static_cast<int>(static_cast<float>(average) * 0.75f + 0.4f);

    std::array<std::int64_t, 256> histogram{};
    std::int64_t sumY = 0, sumCb = 0, sumCr = 0, bright = 0;
    forEachPixel(picture, box, [&](Byte y, Byte cb, Byte cr) {
        if (y < floor) return;
        ++histogram[y];
        sumY += y;
        sumCb += cb;
        sumCr += cr;
        ++bright;
    });
    if (bright > 0) {  // a box darker than its cheeks throughout has no colour: all five stay 0
        colour.y = static_cast<int>(sumY / bright);
        colour.cb = static_cast<int>(sumCb / bright);
        colour.cr = static_cast<int>(sumCr / bright);
        rangeOf(histogram, bright, static_cast<int>(static_cast<float>(average) * 1.4f), colour.low,
                colour.high);
    }
    ZEL_LOG_DEBUG("---SkinMaskStatisDetector::GetFaceColorYuv---");
    return colour;
}

namespace {

SkinStatistics statisticsOfFaces(const YCbCrView& picture, std::span<const SkinFaceRecord> faces) {
    SkinStatistics mean;
    mean.fromFace = true;
    for (const SkinFaceRecord& face : faces) {
        const FaceColour colour = SkinMaskStatisDetector::GetFaceColorYuv(picture, face);
        mean.cb += colour.cb, mean.cr += colour.cr, mean.low += colour.low, mean.high += colour.high;
    }
    const int count = static_cast<int>(faces.size());
    mean.cb /= count, mean.cr /= count, mean.low /= count, mean.high /= count;
    return mean;
}

void weigh(const SkinModel& model, const zellab::PixelBox& box, const YCbCrView& picture,
           zellab::PlaneView<Byte> map) {
    zellab::parallelRows(box.y.length(), [&](int begin, int end) {
        for (int y = box.y.begin + begin; y < box.y.begin + end; ++y) {
            const Byte *luma = picture.y.row(y), *cb = picture.cb.row(y), *cr = picture.cr.row(y);
            Byte* row = map.row(y);
            for (int x = box.x.begin; x < box.x.end; ++x) row[x] = model.weight(luma[x], cb[x], cr[x]);
        }
    });
}

}  // namespace

zellab::PixelBox SkinMaskStatisDetector::areaRead(int width, int height, const SkinFaceRecord& face) {
    const Area patch = patchBelowEyes(width, height, face), box = statisticsBox(width, height, face);
    // Either may be empty, but its corners lie in the picture.
    return {{std::min(patch.left, box.left), std::max({patch.right, box.right, box.left})},
            {std::min(patch.top, box.top), std::max({patch.bottom, box.bottom, box.top})}};
}

void SkinMaskStatisDetector::DetectWithin(const zellab::PixelBox& box, const YCbCrView& picture,
                                          zellab::PlaneView<Byte> map, const SkinFaceRecord& face) {
    const SkinModel model(statisticsOfFaces(picture, {&face, 1}), false);
    weigh(model, box, picture, map);
}

void SkinMaskStatisDetector::Detect(const YCbCrView& picture, zellab::PlaneView<Byte> map,
                                    std::span<const SkinFaceRecord> faces, bool altTable, YCbCrColour* mean) {
    const int width = picture.y.width, height = picture.y.height;
    const SkinModel model(faces.empty() ? statisticsOfPicture(picture.y) : statisticsOfFaces(picture, faces),
                          altTable);
    weigh(model, {{0, width}, {0, height}}, picture, map);

    if (!mean) return;
    if (faces.empty()) {
        *mean = {};
        return;
    }
    const SkinFaceRecord& first = faces.front();
    const Area box{std::max(first.left, 0), std::max(first.top, 0), std::min(first.right, width),
                   std::min(first.bottom, height)};
    std::int64_t sumY = 0, sumCb = 0, sumCr = 0, count = 0;
    forEachPixel(picture, box, [&](Byte y, Byte cb, Byte cr) {
        if (!model.isSure(y, cb, cr)) return;
        sumY += y;
        sumCb += cb;
        sumCr += cr;
        ++count;
    });
    if (count == 0) return;
    *mean = {static_cast<Byte>(sumY / count), static_cast<Byte>(sumCb / count),
             static_cast<Byte>(sumCr / count)};
}

}  // namespace zelbeauty
