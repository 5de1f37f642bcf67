#include "zellab/imageproc/colour/selectiveColor.h"

#include <algorithm>
#include <cstdint>

namespace zellab {

namespace {

/// Sampled: for values up to 128, the percentage that divides a dark channel's shift at least.
constexpr unsigned char kScaleTable[129] = {
    0,  1,  1,  1,  2,  2,  2,  3,  3,  4,  4,  4,  5,  5,  6,  6,  7,  7,  8,  8,  8,  9,  9,  10, 10, 11,
    11, 12, 12, 13, 13, 14, 14, 15, 16, 16, 17, 17, 18, 18, 19, 19, 20, 21, 21, 22, 22, 23, 23, 24, 25, 25,
    26, 27, 27, 28, 28, 29, 30, 30, 31, 32, 32, 33, 34, 34, 35, 36, 36, 37, 38, 38, 39, 40, 41, 41, 42, 43,
    44, 44, 45, 46, 47, 48, 49, 49, 50, 51, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63, 64, 65, 66, 67,
    69, 70, 71, 72, 73, 75, 76, 77, 78, 80, 81, 82, 84, 85, 86, 88, 89, 90, 92, 93, 94, 96, 97, 99, 100};

/// The largest percentage that a channel value takes.
int percentLimit(int value) {
    return value <= 128 ? 100 : 100 * value / (256 - value);
}

int channelShift(int value, int weight, int percentage) {
    const std::int64_t p = std::min(percentLimit(value), percentage);
    const std::int64_t base = std::int64_t{p >= 1 && value < 129 ? value : 256 - value} * weight;
    const std::int64_t x = base * p;
    if (p >= 1 && value < 128) {
        const std::int64_t divisor = std::max<std::int64_t>(p, kScaleTable[value]) * 256;
        return static_cast<int>((divisor / 2 + x) / divisor);
    }
    return static_cast<int>((x + 12800) / 25600);
}

void addShifts(const unsigned char* pixel, int weight, int* shift, int c, int m, int y) {
    const int percentages[3] = {c, m, y};
    for (int k = 0; k < 3; ++k)
        if (percentages[k] != 0) shift[k] += channelShift(pixel[k], weight, percentages[k]);
}

}  // namespace

void SelectiveColorReds(const unsigned char* pixel, int /*low*/, int mid, int high, int* shift, int c, int m,
                        int y) {
    if (pixel[0] > pixel[1] && pixel[0] > pixel[2]) addShifts(pixel, high - mid, shift, c, m, y);
}

void SelectiveColorYellows(const unsigned char* pixel, int low, int mid, int /*high*/, int* shift, int c,
                           int m, int y) {
    if (pixel[2] < pixel[0] && pixel[2] < pixel[1]) addShifts(pixel, mid - low, shift, c, m, y);
}

}  // namespace zellab
