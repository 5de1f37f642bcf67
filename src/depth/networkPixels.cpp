#include "depth/networkPixels.h"

#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

namespace {

// Where the search for a map's limits starts.
constexpr float kFirstMinimum = 10.0f, kFirstMaximum = -1.0f;

}  // namespace

void pixelsToPlanes(const Byte* image, int channels, std::size_t pixels, float* planes) {
    for (std::size_t i = 0; i < pixels; ++i, image += channels)
        for (std::size_t c = 0; c < 3; ++c)
            planes[c * pixels + i] = static_cast<float>(image[2 - c]) / 255.0f;
}

void pixelsToGroups(const Byte* image, int channels, std::size_t pixels, float* groups, int groupLength) {
    for (std::size_t i = 0; i < pixels; ++i, image += channels, groups += groupLength)
        for (std::size_t c = 0; c < 3; ++c) groups[c] = static_cast<float>(image[2 - c]) / 255.0f;
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
