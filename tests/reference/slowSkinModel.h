#pragma once

#include <algorithm>
#include <array>
#include <cmath>

#include "beautykernel/skinmaskstatisdetector/skinFaceRecord.h"
#include "beautykernel/skinmaskstatisdetector/skinTables.h"
#include "reference/slowStackBlur.h"

/// The skin model, step by step. The measured tables are the library's own.

namespace slow {

struct SkinPlanes {
    int width, height;
    Bytes y, cb, cr;
};

struct FaceColour {
    int y = 0, cb = 0, cr = 0, low = 0, high = 0;
};

inline FaceColour faceColour(const SkinPlanes& p, const zelbeauty::SkinFaceRecord& face) {
    const int w = p.width, h = p.height;
    const int ex1 = static_cast<int>(face.points[169].x), ex2 = static_cast<int>(face.points[170].x);
    const int ey = static_cast<int>(face.points[169].y), ny = static_cast<int>(face.points[48].y);
    const int q = (ex2 - ex1) / 4;
    const int lastRow = std::clamp(ny, 0, h - 1), firstRow = std::clamp((lastRow - ey) / 4 + ey, 0, h - 1);
    const int firstColumn = std::clamp(std::max(ex1 - q, face.left), 0, w - 1);
    const int lastColumn = std::min(std::max(std::min(ex2 + q, face.right - 1), 0), w - 1);
    long long sum = 0, count = 0;
    for (int y = firstRow; y < lastRow; ++y)
        for (int x = firstColumn; x < lastColumn; ++x, ++count)
            sum += p.y[static_cast<std::size_t>(y * w + x)];
    if (count == 0) return {};
    const int average = static_cast<int>(sum / count);
    const int floor = static_cast<int>(average * 0.75f + 0.4f);

    const int boxHeight = face.bottom - face.top, boxWidth = face.right - face.left;
    const int top = std::clamp(face.top + static_cast<int>(0.1f * boxHeight), 0, h - 1);
    const int left = std::clamp(face.left + static_cast<int>(0.1f * boxWidth), 0, w - 1);
    int rows = boxHeight - static_cast<int>(0.2f * boxHeight),
        columns = boxWidth - static_cast<int>(0.2f * boxWidth);
    if (top + rows >= h) rows = h - top - 1;
    if (left + columns >= w) columns = w - left - 1;
    std::array<long long, 256> histogram{};
    long long sums[3] = {0, 0, 0}, bright = 0;
    for (int y = top; y < top + rows; ++y)
        for (int x = left; x < left + columns; ++x) {
            const auto i = static_cast<std::size_t>(y * w + x);
            if (p.y[i] < floor) continue;
            ++histogram[p.y[i]], ++bright;
            sums[0] += p.y[i], sums[1] += p.cb[i], sums[2] += p.cr[i];
        }
    if (bright == 0) return {};
    const auto share = [&](int i) {
        long long below = 0;
        for (int v = 0; v <= i; ++v) below += histogram[static_cast<std::size_t>(v)];
        return static_cast<float>(below) / static_cast<float>(bright);
    };
    FaceColour colour{static_cast<int>(sums[0] / bright), static_cast<int>(sums[1] / bright),
                      static_cast<int>(sums[2] / bright), 0, 255};
    for (int i = 255; i >= 0 && 1.0f - share(i) < 0.006f; --i) colour.high = i;
    colour.high = std::min(colour.high, static_cast<int>(average * 1.4f));
    for (int i = 0; i < 256 && share(i) < 0.006f; ++i) colour.low = i;
    colour.low = std::min(colour.low, colour.high);
    return colour;
}

inline FaceColour pictureColour(const SkinPlanes& p) {
    std::array<long long, 256> histogram{};
    for (const unsigned char y : p.y) ++histogram[y];
    const auto wanted = static_cast<long long>(0.25 * static_cast<double>(p.y.size()));
    const auto reached = [&](int first, int step) {
        long long sum = 0;
        for (int i = first;; i += step)
            if ((sum += histogram[static_cast<std::size_t>(i)]) >= wanted) return i;
    };
    const int lower = reached(0, 1), upper = reached(255, -1);
    long long sum = 0, count = 0;
    for (int i = lower; i <= upper; ++i)
        sum += i * histogram[static_cast<std::size_t>(i)], count += histogram[static_cast<std::size_t>(i)];
    const float mean = static_cast<float>(sum) / static_cast<float>(count);
    return {0, 110, 148, static_cast<int>(mean * 0.65f), std::min(static_cast<int>(mean * 1.2f), 255)};
}

/// The weight of every byte of brightness. The low edge must not be 0.
inline std::array<int, 256> lumaWeights(const FaceColour& c, bool face, bool alt) {
    std::array<int, 256> weight{};
    const auto edge = [](int end, float exponent) {
        return static_cast<int>(std::pow(static_cast<float>(end) / 255.0f, exponent) * 255.0f);
    };
    const int edgeLow = edge(c.low, alt ? 1.6f : face ? 1.9f : 2.0f);
    const int edgeHigh = std::min(edge(c.high, alt ? 0.33333334f : 0.29411763f), 255);
    const int k = std::max(edgeLow, static_cast<int>(c.low * 0.9f));
    const auto set = [&](int from, int to, const auto& value) {
        for (int i = from; i <= to; ++i) weight[static_cast<std::size_t>(i)] = value(i);
    };
    set(c.low, c.high, [](int) { return 255; });
    set(k, c.low, [](int) { return 255; });
    set(edgeLow, k, [&](int i) {
        const float share = static_cast<float>(i - edgeLow + 1) / static_cast<float>(k - edgeLow + 1);
        return static_cast<int>(std::pow(share, face ? 1.25f : 0.5f) * 255.0f);
    });
    const int start = weight[static_cast<std::size_t>(edgeLow + 1)];
    set(0, edgeLow, [&](int i) {
        const float share = static_cast<float>(i) / static_cast<float>(edgeLow);
        return static_cast<int>(std::pow(share, 3.0f) * static_cast<float>(start));
    });
    set(c.high, edgeHigh, [&](int i) {
        const float share = static_cast<float>(i - c.high + 1) / static_cast<float>(edgeHigh - c.high + 1);
        return static_cast<int>(std::pow(1.0f - share, 0.5f) * 128.0f + 128.0f);
    });
    set(edgeHigh + 1, 255, [](int) { return 128; });
    for (int i = 0; i < edgeLow; ++i) weight[static_cast<std::size_t>(i)] = 0;  // never read below the edge
    return weight;
}

/// The chroma map, one cell a (Cr, Cb), before and after brightness has its say.
inline Bytes skinMap(const SkinPlanes& p, const FaceColour& c, bool face, bool alt) {
    Bytes stamp(65536, 0), box(65536, 0);
    const auto limit = [](int v) { return std::max(std::min(v, 255), 0); };
    const auto& table = alt ? zelbeauty::skinChromaTableAlt() : zelbeauty::skinChromaTable();
    for (int cr = 0; cr < 256; ++cr)
        for (int cb = 0; cb < 256; ++cb) {
            const auto i = static_cast<std::size_t>(cr * 256 + cb);
            const int column = cb - limit(c.cb - 25), row = cr - limit(c.cr - 35);
            if (column >= 0 && row >= 0 && cb <= limit(c.cb + 36) && cr <= limit(c.cr + 37))
                stamp[i] = table[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)];
            if (cb >= limit(c.cb - 15) && cb <= limit(c.cb + 24) && cr >= limit(c.cr - 24) &&
                cr <= limit(c.cr + 24))
                box[i] = 255;
        }
    stackBlurEx(box, 256, 256, 256, 25);
    const std::array<int, 256> weight = lumaWeights(c, face, alt);
    Bytes map;
    for (std::size_t i = 0; i < p.y.size(); ++i) {
        const auto cell = static_cast<std::size_t>(p.cr[i] * 256 + p.cb[i]);
        int m = (zelbeauty::kSkinBoxCurve[box[cell]] * stamp[cell]) >> 8;
        if (p.y[i] < c.low || p.y[i] > c.high) m = (m * weight[p.y[i]]) >> 8;
        map.push_back(static_cast<unsigned char>(m));
    }
    return map;
}

}  // namespace slow
