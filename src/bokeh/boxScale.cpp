#include "bokeh/boxScale.h"

#include <emmintrin.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "bokeh/weightedRows.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab::Bokeh {

namespace {

/// Along one axis: the first pixel of each target pixel's samples, and the weights of `taps` pixels from there
/// on, an even number. They sum to 1 << kWeightBits.
struct Axis {
    int taps;
    std::vector<int> first;
    std::vector<std::int16_t> weights;

    Axis(int source, int target);
};

Axis::Axis(int source, int target) : first(static_cast<std::size_t>(target)) {
    const int steps = static_cast<int>(std::ceil(static_cast<float>(source) / static_cast<float>(target)));
    taps = (steps + 2) / 2 * 2;
    weights.resize(sampleCount(target, taps));
    const double scale = static_cast<double>(source) / target;
    for (int i = 0; i < target; ++i) {
        const double place = (i + 0.5) * scale - 0.5 * (steps - 1) - 0.5, corner = std::floor(place);
        first[static_cast<std::size_t>(i)] = static_cast<int>(corner);
        std::int16_t* const out = weights.data() + sampleCount(i, taps);
        // Rounded sums from the first on keep the total.
        int before = 0;
        for (int k = 0; k <= steps; ++k) {
            const double covered = k == steps ? steps : k + 1.0 - (place - corner);
            const int sum = static_cast<int>(std::lround(covered / steps * (1 << kWeightBits)));
            out[k] = static_cast<std::int16_t>(sum - before);
            before = sum;
        }
    }
}

/// One target row from the sums of its source rows; sums of `axis.first` - 1 .. are there to read.
void sumColumns(const Axis& axis, const std::int16_t* sums, int width, Byte* target) {
    constexpr int kShift = kWeightBits + kLevelBits;
    const std::int16_t* weights = axis.weights.data();
    for (int x = 0; x < width; ++x, weights += axis.taps, target += 4) {
        const std::int16_t* const pixels = sums + std::ptrdiff_t{4} * axis.first[static_cast<std::size_t>(x)];
        __m128i sum = _mm_set1_epi32(1 << (kShift - 1));
        for (int k = 0; k < axis.taps; k += 2) {
            const __m128i two =
                _mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels + std::ptrdiff_t{4} * k));
            sum = _mm_add_epi32(sum, _mm_madd_epi16(_mm_unpacklo_epi16(two, _mm_srli_si128(two, 8)),
                                                    pairOfWeights(weights + k)));
        }
        const __m128i levels = _mm_packs_epi32(_mm_srai_epi32(sum, kShift), _mm_setzero_si128());
        const int pixel = _mm_cvtsi128_si32(_mm_packus_epi16(levels, levels)) | static_cast<int>(0xff000000u);
        std::memcpy(target, &pixel, 4);
    }
}

}  // namespace

void boxScale(const ConstImageView& source, const ImageView& target) {
    const Axis columns(source.width, target.width), rows(source.height, target.height);
    const int margin = columns.taps + 1;  // pixels that repeat the first and the last
    parallelRows(target.height, [&](int begin, int end) {
        std::vector<std::int16_t> sums(sampleCount(source.width + 2 * margin, 4));
        std::int16_t* const first = sums.data() + std::ptrdiff_t{4} * margin;
        std::vector<const Byte*> lines(static_cast<std::size_t>(rows.taps));
        for (int y = begin; y < end; ++y) {
            for (int k = 0; k < rows.taps; ++k)
                lines[static_cast<std::size_t>(k)] =
                    source.row(std::clamp(rows.first[static_cast<std::size_t>(y)] + k, 0, source.height - 1));
            sumRows(lines.data(), rows.taps, rows.weights.data() + sampleCount(y, rows.taps),
                    4 * source.width, first);
            std::int16_t* const last = first + std::ptrdiff_t{4} * (source.width - 1);
            for (int i = 1; i <= margin; ++i) {
                std::copy_n(first, 4, first - std::ptrdiff_t{4} * i);
                std::copy_n(last, 4, last + std::ptrdiff_t{4} * i);
            }
            sumColumns(columns, first, target.width, target.row(y));
        }
    });
}

}  // namespace zellab::Bokeh
