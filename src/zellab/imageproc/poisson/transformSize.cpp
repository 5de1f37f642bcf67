#include "zellab/imageproc/poisson/transformSize.h"

#include <algorithm>
#include <array>

namespace zellab {

namespace {

constexpr bool isSmooth(int n) {
    for (int factor : {2, 3, 5, 7})
        while (n % factor == 0) n /= factor;
    return n == 1;
}

constexpr int countSmooth() {
    int count = 0;
    for (int n = 2; n <= kLargestTransformSize; ++n) count += isSmooth(n) ? 1 : 0;
    return count;
}

/// The numbers from 2 to 10000 with no prime factor above 7, ascending.
constexpr auto kTransformSizes = [] {
    std::array<int, countSmooth()> sizes{};
    std::size_t i = 0;
    for (int n = 2; n <= kLargestTransformSize; ++n)
        if (isSmooth(n)) sizes[i++] = n;
    return sizes;
}();
static_assert(kTransformSizes.size() == 337 && kTransformSizes.back() == 10000);

}  // namespace

int transformPadding(int side) {
    if (side < 2 || side > kLargestTransformSize / 2 + 1) return 0;
    const int length = 2 * side - 2;
    const auto* size = std::lower_bound(kTransformSizes.begin(), kTransformSizes.end(), length);
    while (*size % 2 != 0) ++size;  // the last entry is even, so this ends
    return (*size - length) / 2;
}

Span growToTransformSize(Span span, int size) {
    const int padding = transformPadding(span.length());
    const int grown = span.length() + padding;
    if (padding == 0 || grown > size) return span;
    const int begin = std::clamp(span.begin - padding / 2, 0, size - grown);
    return {begin, begin + grown};
}

}  // namespace zellab
