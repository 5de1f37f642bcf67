#include "zellab/imageproc/resample/resampleShuffles.h"

#include <immintrin.h>

#include <algorithm>
#include <cstring>

#include "platform/simdLevel.h"

namespace zellab {

namespace {

/// Bytes that one load brings, and a shuffle can choose from.
constexpr int kLoadBytes = 16;
constexpr std::size_t kPlaneBlock = 8, kPixelBlock = 2;

/// Starts the plan: the base of every block, and whether each block's outputs, two samples of `bytes` bytes
/// each, lie within one load. An incomplete last block repeats the last output.
bool planBases(AxisFilter& filter, std::size_t blockOutputs, int bytes) {
    const std::size_t count = filter.first.size();
    ShuffleBlocks plan;
    for (std::size_t begin = 0; begin < count; begin += blockOutputs) {
        const int base = filter.first[begin];
        const int last = filter.first[std::min(begin + blockOutputs, count) - 1];
        if ((std::int64_t{last} - base + 2) * bytes > kLoadBytes) return false;
        plan.base.push_back(base);
    }
    filter.blocks = std::move(plan);
    filter.slack = kLoadBytes;
    return true;
}

}  // namespace

bool planShuffledPlane(AxisFilter& filter) {
    if (!planBases(filter, kPlaneBlock, 1)) return false;
    ShuffleBlocks& plan = filter.blocks;
    const auto pairs = static_cast<std::size_t>(filter.taps) / 2;
    plan.weights.resize(plan.base.size() * pairs * 2 * kPlaneBlock);
    std::int16_t* weights = plan.weights.data();
    for (std::size_t b = 0; b < plan.base.size(); ++b) {
        const auto outputOf = [&](std::size_t j) {
            return std::min(b * kPlaneBlock + j, filter.first.size() - 1);
        };
        for (std::size_t j = 0; j < kPlaneBlock; ++j) {
            const int offset = filter.first[outputOf(j)] - plan.base[b];
            plan.shuffle.push_back(static_cast<unsigned char>(offset));
            plan.shuffle.push_back(static_cast<unsigned char>(offset + 1));
        }
        for (std::size_t pair = 0; pair < pairs; ++pair)
            for (std::size_t j = 0; j < kPlaneBlock; ++j, weights += 2)
                std::copy_n(filter.weightsOf(outputOf(j)) + 2 * pair, 2, weights);
    }
    return true;
}

ZEL_TARGET_AVX2 void horizontalShuffledPlane(const Byte* row, const AxisFilter& filter, std::size_t count,
                                             Byte* out) {
    const ShuffleBlocks& plan = filter.blocks;
    const std::int16_t* weights = plan.weights.data();
    const __m256i half = _mm256_set1_epi32(kWeightSum / 2);
    for (std::size_t b = 0; b < plan.base.size(); ++b) {
        const __m128i shuffle =
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(&plan.shuffle[b * kLoadBytes]));
        const Byte* samples = row + plan.base[b];
        __m256i sums = half;
        for (int k = 0; k < filter.taps; k += 2, weights += 2 * kPlaneBlock) {
            const __m128i loaded = _mm_loadu_si128(reinterpret_cast<const __m128i*>(samples + k));
            const __m256i pairs = _mm256_cvtepu8_epi16(_mm_shuffle_epi8(loaded, shuffle));
            const __m256i shares = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(weights));
            sums = _mm256_add_epi32(sums, _mm256_madd_epi16(pairs, shares));
        }
        sums = _mm256_srai_epi32(sums, kWeightBits);
        const __m128i words =
            _mm_packs_epi32(_mm256_castsi256_si128(sums), _mm256_extracti128_si256(sums, 1));
        const __m128i bytes = _mm_packus_epi16(words, words);
        const std::size_t x = b * kPlaneBlock;
        if (x + kPlaneBlock <= count) {
            _mm_storel_epi64(reinterpret_cast<__m128i*>(out + x), bytes);
        } else {
            alignas(16) Byte last[16];
            _mm_store_si128(reinterpret_cast<__m128i*>(last), bytes);
            std::memcpy(out + x, last, count - x);
        }
    }
}

bool planShuffledPixels(AxisFilter& filter) {
    if (filter.taps != 2 || !planBases(filter, kPixelBlock, 4)) return false;
    ShuffleBlocks& plan = filter.blocks;
    for (std::size_t b = 0; b < plan.base.size(); ++b)
        for (std::size_t j = 0; j < kPixelBlock; ++j) {
            const std::size_t output = std::min(b * kPixelBlock + j, filter.first.size() - 1);
            const int offset = 4 * (filter.first[output] - plan.base[b]), share = filter.phase[output];
            for (int c = 0; c < 4; ++c) {
                plan.shuffle.push_back(static_cast<unsigned char>(offset + c));
                plan.shuffle.push_back(static_cast<unsigned char>(offset + c + 4));
                plan.shares.push_back(static_cast<unsigned char>(kPhases - share));
                plan.shares.push_back(static_cast<unsigned char>(share));
            }
        }
    return true;
}

namespace {

/// The two outputs of a block, as words; the result is exact although bytes are multiplied, because two-tap
/// weights are whole 128ths.
ZEL_TARGET_AVX2 inline __m128i mixBlock(const Byte* row, const ShuffleBlocks& plan, std::size_t b) {
    const auto* shuffle = reinterpret_cast<const __m128i*>(plan.shuffle.data()) + b;
    const auto* shares = reinterpret_cast<const __m128i*>(plan.shares.data()) + b;
    const auto* samples = reinterpret_cast<const __m128i*>(row + std::ptrdiff_t{4} * plan.base[b]);
    const __m128i pairs = _mm_shuffle_epi8(_mm_loadu_si128(samples), _mm_loadu_si128(shuffle));
    const __m128i sums =
        _mm_maddubs_epi16(_mm_loadu_si128(shares), _mm_xor_si128(pairs, _mm_set1_epi8(-128)));
    return _mm_srli_epi16(_mm_add_epi16(sums, _mm_set1_epi16(kSignedRound)), kPhaseBits);
}

}  // namespace

ZEL_TARGET_AVX2 void horizontalShuffledPixels(const Byte* row, const AxisFilter& filter, std::size_t count,
                                              Byte* out) {
    const ShuffleBlocks& plan = filter.blocks;
    std::size_t b = 0;
    for (; (b + 2) * kPixelBlock <= count; b += 2) {
        const __m128i four = _mm_packus_epi16(mixBlock(row, plan, b), mixBlock(row, plan, b + 1));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 4 * kPixelBlock * b), four);
    }
    for (; b < plan.base.size(); ++b) {
        const __m128i words = mixBlock(row, plan, b);
        alignas(16) Byte last[16];
        _mm_store_si128(reinterpret_cast<__m128i*>(last), _mm_packus_epi16(words, words));
        const std::size_t x = b * kPixelBlock;
        std::memcpy(out + 4 * x, last, 4 * std::min(kPixelBlock, count - x));
    }
}

}  // namespace zellab
