#include "depth/networkPixels.h"

#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

namespace {

// Where the search for a map's limits starts.
constexpr float kFirstMinimum = 10.0f, kFirstMaximum = -1.0f;

}  // namespace

void pixelsToPlanes(ConstImageView image, float* planes) {
    const std::size_t pixels = sampleCount(image.width, image.height);
    const Byte* pixel = image.data;
    for (std::size_t i = 0; i < pixels; ++i, pixel += ConstImageView::kChannels)
        for (std::size_t c = 0; c < 3; ++c)
            planes[c * pixels + i] = static_cast<float>(pixel[2 - c]) / 255.0f;
}

void pixelsToGroups(ConstImageView image, float* groups, int groupLength) {
    const std::size_t pixels = sampleCount(image.width, image.height);
    const Byte* pixel = image.data;
    for (std::size_t i = 0; i < pixels; ++i, pixel += ConstImageView::kChannels, groups += groupLength)
        for (std::size_t c = 0; c < 3; ++c) groups[c] = static_cast<float>(pixel[2 - c]) / 255.0f;
}

bool mapToBytes(const float* map, std::size_t samples, Byte* out) {
    if (!out) return false;
    float minimum = kFirstMinimum, maximum = kFirstMaximum;
    for (std::size_t i = 0; i < samples; ++i) {
        if (map[i] < minimum) minimum = map[i];
        if (map[i] > maximum) maximum = map[i];
    }
    // 0 / 0 and infinities give NaN, for which the plain conversion has no defined byte.
    for (std::size_t i = 0; i < samples; ++i)
        out[i] = truncateToByte((map[i] - minimum) / (maximum - minimum) * 255.0f);
    return true;
}

void groupsToPlanes(const float* groups, std::size_t channels, std::size_t pixels, float* planes) {
    for (std::size_t i = 0; i < pixels; ++i)
        for (std::size_t c = 0; c < channels; ++c) planes[c * pixels + i] = groups[i * channels + c];
}

}  // namespace zellab
