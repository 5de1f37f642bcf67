#include "cli/studio/pixels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace zelcli::studio {

namespace {

std::size_t areaOf(int width, int height) {
    return static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
}

/// Pixels alone: what a file carried stays with the picture that was read.
Image pictureOf(int width, int height, std::vector<unsigned char> rgba) {
    Image image;
    image.width = width;
    image.height = height;
    image.rgba = std::move(rgba);
    return image;
}

unsigned char rounded(double value) {
    return static_cast<unsigned char>(std::clamp(value + 0.5, 0.0, 255.0));
}

/// The samples that one sample of a smaller row covers: the first and the last count by their share.
struct Span {
    int first, last;
    float firstShare, lastShare;

    float share(int at) const { return at == first ? firstShare : at == last ? lastShare : 1.0F; }
};

std::vector<Span> spansOf(int from, int source, int target) {
    std::vector<Span> spans;
    spans.reserve(static_cast<std::size_t>(target));
    const double step = static_cast<double>(source) / target;
    for (int i = 0; i < target; ++i) {
        const double begin = i * step, end = std::min<double>(source, (i + 1) * step);
        const int first = static_cast<int>(begin);
        const int last = std::max(first, static_cast<int>(std::ceil(end - 1e-9)) - 1);
        const auto lastShare = static_cast<float>(end - last);
        const auto firstShare = static_cast<float>(first == last ? end - begin : first + 1 - begin);
        spans.push_back({from + first, from + last, firstShare, lastShare});
    }
    return spans;
}

/// Where a sample of a larger row lies between two of the smaller one.
struct Between {
    int low, high;
    float share;  // of the higher one
};

Between betweenOf(int at, int source, int target) {
    const double position = std::clamp((at + 0.5) * source / target - 0.5, 0.0, source - 1.0);
    const int low = static_cast<int>(position);
    return {low, std::min(low + 1, source - 1), static_cast<float>(position - low)};
}

/// Enlarges or reduces rows of samples by straight lines.
std::vector<unsigned char> interpolated(const unsigned char* from, int channels, int width, int height,
                                        int toWidth, int toHeight) {
    std::vector<unsigned char> out(areaOf(toWidth, toHeight) * static_cast<std::size_t>(channels));
    std::vector<Between> columns;
    columns.reserve(static_cast<std::size_t>(toWidth));
    for (int x = 0; x < toWidth; ++x) columns.push_back(betweenOf(x, width, toWidth));
    unsigned char* to = out.data();
    for (int y = 0; y < toHeight; ++y) {
        const Between row = betweenOf(y, height, toHeight);
        const unsigned char* const upper = from + areaOf(width, row.low) * static_cast<std::size_t>(channels);
        const unsigned char* const lower =
            from + areaOf(width, row.high) * static_cast<std::size_t>(channels);
        for (const Between& column : columns)
            for (int c = 0; c < channels; ++c) {
                const int low = column.low * channels + c, high = column.high * channels + c;
                const float above = static_cast<float>(upper[low]) +
                                    static_cast<float>(upper[high] - upper[low]) * column.share;
                const float below = static_cast<float>(lower[low]) +
                                    static_cast<float>(lower[high] - lower[low]) * column.share;
                *to++ = rounded(static_cast<double>(above + (below - above) * row.share));
            }
    }
    return out;
}

}  // namespace

Image reduced(const Image& image, const Rect& part, int width, int height) {
    Image out = pictureOf(width, height, std::vector<unsigned char>(4 * areaOf(width, height)));
    const auto columns = spansOf(part.left, part.width, width);
    const auto rows = spansOf(part.top, part.height, height);
    const std::size_t stride = 4 * static_cast<std::size_t>(image.width);
    unsigned char* to = out.rgba.data();
    if (width == part.width && height == part.height) {
        for (const Span& row : rows) {
            const unsigned char* const from =
                image.rgba.data() + stride * static_cast<std::size_t>(row.first) + 4 * part.left;
            to = std::copy_n(from, 4 * static_cast<std::size_t>(width), to);
        }
        return out;
    }
    std::vector<float> sums;
    for (const Span& row : rows) {
        sums.assign(5 * static_cast<std::size_t>(width), 0.0F);
        for (int y = row.first; y <= row.last; ++y) {
            const unsigned char* const line = image.rgba.data() + stride * static_cast<std::size_t>(y);
            float* sum = sums.data();
            for (const Span& column : columns) {
                for (int x = column.first; x <= column.last; ++x) {
                    const unsigned char* const p = line + 4 * static_cast<std::ptrdiff_t>(x);
                    const float area = row.share(y) * column.share(x), weight = area * p[3];
                    for (int c = 0; c < 3; ++c) sum[c] += weight * p[c];
                    sum[3] += weight;
                    sum[4] += area;
                }
                sum += 5;
            }
        }
        for (const float* sum = sums.data(); sum != sums.data() + sums.size(); sum += 5, to += 4) {
            for (int c = 0; c < 3; ++c)
                to[c] = sum[3] > 0 ? rounded(static_cast<double>(sum[c] / sum[3]))
                                   : static_cast<unsigned char>(0);
            to[3] = rounded(static_cast<double>(sum[3] / sum[4]));
        }
    }
    return out;
}

Image reducedTo(const Image& image, int longestSide) {
    const double scale =
        std::min(1.0, static_cast<double>(longestSide) / std::max(image.width, image.height));
    const auto side = [&](int length) { return std::max(1, static_cast<int>(std::lround(length * scale))); };
    return reduced(image, {0, 0, image.width, image.height}, side(image.width), side(image.height));
}

Image scaledTo(const Image& image, int width, int height) {
    if (width <= image.width && height <= image.height)
        return reduced(image, {0, 0, image.width, image.height}, width, height);
    return pictureOf(width, height,
                     interpolated(image.rgba.data(), 4, image.width, image.height, width, height));
}

Mask scaledTo(const Mask& mask, int width, int height) {
    if (mask.width == width && mask.height == height) return mask;
    return {width, height, interpolated(mask.samples.data(), 1, mask.width, mask.height, width, height)};
}

void blend(const Image& before, Image& after, double share) {
    if (share >= 1) return;
    const int weight = static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * 256));
    for (std::size_t i = 0; i < after.rgba.size(); ++i) {
        const int from = before.rgba[i], to = after.rgba[i];
        after.rgba[i] = static_cast<unsigned char>((from * (256 - weight) + to * weight + 128) >> 8);
    }
}

}  // namespace zelcli::studio
