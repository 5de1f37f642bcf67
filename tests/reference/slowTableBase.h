#pragma once

#include "reference/slowColour.h"

/// The exported filters that know no face.

namespace slow {

/// Mixes `source` into the region of `image` as far as it lies in it; `mask` has the region's size and is
/// blurred in place.
inline void alphaMix(Bytes& image, int width, const Bytes& source, Bytes& mask, const float* params) {
    const int height = static_cast<int>(image.size()) / 4 / width;
    const double left = std::trunc(params[0]), top = std::trunc(params[1]);
    const int regionWidth = static_cast<int>(params[2]), regionHeight = static_cast<int>(params[3]);
    const auto strength = static_cast<float>(params[5] / 255.0);
    maskStackBlur(mask, regionWidth, regionHeight, static_cast<int>(params[4]));
    for (int y = 0; y < regionHeight; ++y)
        for (int x = 0; x < regionWidth; ++x) {
            const int m = mask[static_cast<std::size_t>((y * regionWidth + x) * 4)];
            const double px = left + x, py = top + y;
            if (m == 0 || px < 0 || py < 0 || px >= width || py >= height) continue;
            const double a = static_cast<float>(m) * strength;
            for (int c = 0; c < 3; ++c) {
                const auto i = static_cast<std::size_t>((py * width + px) * 4 + c);
                image[i] = static_cast<unsigned char>(source[i] * a + image[i] * (1.0 - a));
            }
        }
}

template <typename Row>
void colorMixing(Bytes& image, const std::vector<float>& params, Row brightnessRow, Row contrastRow) {
    if (params.size() < 3) return;
    contrastBrightness(image, params[0], params[1], brightnessRow, contrastRow);
    saturationAdjust(image, static_cast<int>(params[2]));
    if (params.size() == 4) logBrightnessAdjust(image, static_cast<int>(params[3]));
}

inline void mosaic(Bytes& image, int width, int height, int blockSize) {
    const int block = std::max(blockSize, 2);
    const Bytes copy = image;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < 3; ++c) {
                const int left = x / block * block, top = y / block * block;
                int sum = 0, count = 0;
                for (int v = top; v < height && v < top + block; ++v)
                    for (int u = left; u < width && u < left + block; ++u, ++count)
                        sum += copy[static_cast<std::size_t>((v * width + u) * 4 + c)];
                image[static_cast<std::size_t>((y * width + x) * 4 + c)] =
                    static_cast<unsigned char>(sum / count);
            }
}

inline void sharp(Bytes& image, float amount, const Bytes& blurred) {
    const float a = amount > 0 ? amount * 4.0f : amount;
    for (std::size_t i = 0; i < image.size(); ++i)
        if (i % 4 != 3) {
            const float v = static_cast<float>(image[i]) * (a + 1.0f) - static_cast<float>(blurred[i]) * a;
            image[i] = toByte(static_cast<int>(v));
        }
}

}  // namespace slow
