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

using ConstPlane = zellab::PlaneView<const unsigned char>;

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

template <typename Visit>
void forEachIndex(const Area& area, int width, const Visit& visit) {
    for (int y = area.top; y < area.bottom; ++y)
        for (int x = area.left; x < area.right; ++x)
            visit(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                  static_cast<std::size_t>(x));
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
SkinStatistics statisticsOfPicture(const unsigned char* planeY, std::size_t count) {
    std::array<std::int64_t, 256> histogram{};
    for (std::size_t i = 0; i < count; ++i) ++histogram[planeY[i]];
    const auto quarter = static_cast<std::int64_t>(0.25 * static_cast<double>(count));
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

void SkinMaskStatisDetector::GetFaceColorYuv(const unsigned char* planeY, const unsigned char* planeCb,
                                             const unsigned char* planeCr, int width, int height,
                                             const SkinFaceRecord& face, int& outY, int& outCb, int& outCr,
                                             int& outLow, int& outHigh) {
    ZEL_LOG_DEBUG("+++SkinMaskStatisDetector::GetFaceColorYuv+++");
    outY = outCb = outCr = outLow = outHigh = 0;
    const Area patch = patchBelowEyes(width, height, face), box = statisticsBox(width, height, face);
    if (patch.empty() || box.empty()) {
        ZEL_LOG_ERROR("SkinMaskStatisDetector::GetFaceColorYuv:: Face Size is illegal!");
        return;
    }
    std::int64_t sum = 0, count = 0;
    forEachIndex(patch, width, [&](std::size_t i) {
        sum += planeY[i];
        ++count;
    });
    const int average = static_cast<int>(sum / count);
    const int floor = static_cast<int>(static_cast<float>(average) * 0.75f + 0.4f);

    std::array<std::int64_t, 256> histogram{};
    std::int64_t sumY = 0, sumCb = 0, sumCr = 0, bright = 0;
    forEachIndex(box, width, [&](std::size_t i) {
        if (planeY[i] < floor) return;
        ++histogram[planeY[i]];
        sumY += planeY[i];
        sumCb += planeCb[i];
        sumCr += planeCr[i];
        ++bright;
    });
    if (bright > 0) {  // a box darker than its cheeks throughout has no colour: all five stay 0
        outY = static_cast<int>(sumY / bright);
        outCb = static_cast<int>(sumCb / bright);
        outCr = static_cast<int>(sumCr / bright);
        rangeOf(histogram, bright, static_cast<int>(static_cast<float>(average) * 1.4f), outLow, outHigh);
    }
    ZEL_LOG_DEBUG("---SkinMaskStatisDetector::GetFaceColorYuv---");
}

namespace {

SkinStatistics statisticsOfFaces(const unsigned char* planeY, const unsigned char* planeCb,
                                 const unsigned char* planeCr, int width, int height, int faceCount,
                                 const SkinFaceRecord* faces) {
    SkinStatistics mean;
    mean.fromFace = true;
    for (int i = 0; i < faceCount; ++i) {
        int y = 0, cb = 0, cr = 0, low = 0, high = 0;
        SkinMaskStatisDetector::GetFaceColorYuv(planeY, planeCb, planeCr, width, height, faces[i], y, cb, cr,
                                                low, high);
        mean.cb += cb, mean.cr += cr, mean.low += low, mean.high += high;
    }
    mean.cb /= faceCount, mean.cr /= faceCount, mean.low /= faceCount, mean.high /= faceCount;
    return mean;
}

void weigh(const SkinModel& model, const zellab::PixelBox& box, const unsigned char* planeY,
           const unsigned char* planeCb, const unsigned char* planeCr, int width, unsigned char* mask) {
    zellab::parallelRows(box.y.length(), [&](int begin, int end) {
        for (int y = box.y.begin + begin; y < box.y.begin + end; ++y) {
            const std::size_t row = zellab::sampleCount(width, y);
            const std::size_t last = row + static_cast<std::size_t>(box.x.end);
            for (std::size_t i = row + static_cast<std::size_t>(box.x.begin); i < last; ++i)
                mask[i] = model.weight(planeY[i], planeCb[i], planeCr[i]);
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

void SkinMaskStatisDetector::DetectWithin(const zellab::PixelBox& box, const unsigned char* planeY,
                                          const unsigned char* planeCb, const unsigned char* planeCr,
                                          int width, int height, unsigned char* mask,
                                          const SkinFaceRecord& face) {
    const SkinModel model(statisticsOfFaces(planeY, planeCb, planeCr, width, height, 1, &face), false);
    weigh(model, box, planeY, planeCb, planeCr, width, mask);
}

void SkinMaskStatisDetector::Detect(const unsigned char* planeY, const unsigned char* planeCb,
                                    const unsigned char* planeCr, int width, int height, unsigned char* mask,
                                    int faceCount, const SkinFaceRecord* faces, unsigned char* outY,
                                    unsigned char* outCb, unsigned char* outCr, bool altTable) {
    const ConstPlane luma(planeY, width, height);
    const SkinStatistics statistics =
        faceCount > 0 ? statisticsOfFaces(planeY, planeCb, planeCr, width, height, faceCount, faces)
                      : statisticsOfPicture(planeY, zellab::sampleCount(width, height));
    const SkinModel model(statistics, altTable);
    weigh(model, {{0, width}, {0, height}}, planeY, planeCb, planeCr, width, mask);

    if (!outY || !outCb || !outCr) return;
    if (faceCount < 1) {
        *outY = *outCb = *outCr = 0;
        return;
    }
    const Area box{std::max(faces->left, 0), std::max(faces->top, 0), std::min(faces->right, width),
                   std::min(faces->bottom, height)};
    std::int64_t sumY = 0, sumCb = 0, sumCr = 0, count = 0;
    forEachIndex(box, width, [&](std::size_t i) {
        if (!model.isSure(planeY[i], planeCb[i], planeCr[i])) return;
        sumY += planeY[i];
        sumCb += planeCb[i];
        sumCr += planeCr[i];
        ++count;
    });
    if (count == 0) return;
    *outY = static_cast<unsigned char>(sumY / count);
    *outCb = static_cast<unsigned char>(sumCb / count);
    *outCr = static_cast<unsigned char>(sumCr / count);
}

}  // namespace zelbeauty
