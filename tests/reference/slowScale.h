#pragma once

#include <cmath>

#include "reference/slowTone.h"

/// The scalers, one sample at a time.

namespace slow {

/// One byte of a plane or picture between its samples; behind an end the end sample repeats.
inline int between(const Bytes& plane, int w, int h, int channels, int channel, float x, float y) {
    const int left = static_cast<int>(x), top = static_cast<int>(y);
    const int right = std::min(left + 1, w - 1), bottom = std::min(top + 1, h - 1);
    const auto grid = gridOf(plane, w, channels);
    const auto column = [&](int i) {
        const int upper = grid(i, top, channel), lower = grid(i, bottom, channel);
        return static_cast<float>(upper) + static_cast<float>(lower - upper) * (y - top);
    };
    return static_cast<unsigned char>((column(right) - column(left)) * (x - left) + column(left));
}

/// Sample positions that a single walk over the axis reaches by adding the step.
inline std::vector<float> walkedPositions(int source, int target) {
    const float step = static_cast<float>(source) / static_cast<float>(target);
    std::vector<float> positions;
    float position = 0;
    for (int i = 0; i < target; ++i, position += step) positions.push_back(position);
    return positions;
}

/// The threaded bilinear scaler for sizes that differ; alpha of four-byte pixels ends as 255.
inline Bytes scaleBilinear(const Bytes& source, int sourceWidth, int sourceHeight, int targetWidth,
                           int targetHeight, int channels) {
    Bytes target;
    const std::vector<float> xs = walkedPositions(sourceWidth, targetWidth),
                             ys = walkedPositions(sourceHeight, targetHeight);
    for (const float sy : ys)
        for (const float sx : xs)
            for (int c = 0; c < channels; ++c) {
                const int value = between(source, sourceWidth, sourceHeight, channels, c, sx, sy);
                target.push_back(c == 3 ? 255 : static_cast<unsigned char>(value));
            }
    return target;
}

/// Where a target sample of the filter scaler lies: a source index and its weights for consecutive samples.
struct FilterTaps {
    int first;
    std::vector<int> weights;
};

/// Quality 0. The last position stops one whole sample short of the end.
inline FilterTaps twoTaps(int i, int target, int source) {
    const int p = static_cast<int>((i + 0.5f) / target * (source - 0.5f) * 128.0f + 0.5f);
    const int limited = std::min(p, (source - 1) * 128 - 128), phase = limited & 127;
    return {limited >> 7, {(128 - phase) * 128, phase * 128}};
}

inline float cubic(float x) {
    x = std::fabs(x);
    if (x < 1.0f) return x * x * (1.25f * x - 2.25f) + 1.0f;
    return x < 2.0f ? ((3.75f - 0.75f * x) * x - 6.0f) * x + 3.0f : 0.0f;
}

/// Quality 3 where the target is not smaller.
inline FilterTaps fourTaps(int i, int target, int source) {
    const int p = static_cast<int>(((i + 0.5f) / target * source - 0.5f) * 128.0f + 0.5f);
    const float t = 1.0f + (p & 127) * 0.0078125f;
    const float kernel[4] = {cubic(t), cubic(t - 1.0f), cubic(2.0f - t), cubic(3.0f - t)};
    const float scale = 16384.0f / (kernel[0] + kernel[1] + kernel[2] + kernel[3]);
    FilterTaps taps{(p >> 7) - 1, {}};
    int sum = 0;
    for (const float k : kernel) sum += taps.weights.emplace_back(static_cast<int>(k * scale));
    *std::max_element(taps.weights.begin(), taps.weights.end()) += 16384 - sum;  // what truncation left over
    return taps;
}

/// One axis of the filter scaler: `lines` lines (rows, or columns) of `source` samples become lines of
/// `target` samples. Taps beyond an end read the end sample.
template <typename Taps>
Bytes filterAxis(const Bytes& in, int source, int target, int lines, int channels, bool horizontal,
                 Taps tapsOf) {
    Bytes out(static_cast<std::size_t>(target * lines * channels));
    const auto index = [&](int line, int i, int length, int c) {
        const int pixel = horizontal ? line * length + i : i * lines + line;
        return static_cast<std::size_t>(pixel * channels + c);
    };
    for (int i = 0; i < target; ++i) {
        const FilterTaps taps = tapsOf(i, target, source);
        for (int line = 0; line < lines; ++line)
            for (int c = 0; c < channels; ++c) {
                int sum = 8192;
                for (std::size_t k = 0; k < taps.weights.size(); ++k) {
                    const int at = std::clamp(taps.first + static_cast<int>(k), 0, source - 1);
                    sum += taps.weights[k] * in[index(line, at, source, c)];
                }
                out[index(line, i, target, c)] = toByte(sum >> 14);
            }
    }
    return out;
}

/// The filter scaler for sizes that differ; the pass that leaves the smaller picture comes first.
template <typename Taps>
Bytes filterResize(const Bytes& in, int sourceWidth, int sourceHeight, int targetWidth, int targetHeight,
                   int channels, Taps tapsOf) {
    if (sourceHeight * targetWidth <= sourceWidth * targetHeight) {
        const Bytes wide = filterAxis(in, sourceWidth, targetWidth, sourceHeight, channels, true, tapsOf);
        return filterAxis(wide, sourceHeight, targetHeight, targetWidth, channels, false, tapsOf);
    }
    const Bytes tall = filterAxis(in, sourceHeight, targetHeight, sourceWidth, channels, false, tapsOf);
    return filterAxis(tall, sourceWidth, targetWidth, targetHeight, channels, true, tapsOf);
}

}  // namespace slow
