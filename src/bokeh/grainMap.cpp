#include "bokeh/grainMap.h"

#include <emmintrin.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "zellab/imageproc/core/parallelRows.h"

namespace zellab::Bokeh {

namespace {

constexpr int kSide = GrainMap::kCellSide;
constexpr std::size_t kStrengths = GrainMap::kStrengths;
constexpr int kSquares = kSide / 2;  // of 2 by 2 pixels along a cell

/// From the mean size of the differences, in levels, to the strength of the noise that they are made of: they
/// have twice its deviation, a normal deviate's mean size is 0.798 of that, and the least of four cells' means
/// of 16 lies at 0.805 of their own mean.
constexpr float kScale = 1.0f / (0.798f * 0.805f * 2.0f) / 255.0f;
constexpr float kMost = 0.04f;  // more than this is texture after all

/// Where the three other cells lie, in units of their distance, which holds for a picture whose shorter side is
/// kUsualShortSide.
constexpr std::array<std::array<float, 2>, 3> kDirections{{{1.0f, 0.0f}, {-0.5f, 0.866f}, {-0.5f, -0.866f}}};
constexpr float kApart = 72.0f, kLeastApart = 12.0f, kUsualShortSide = 3024.0f;

/// Brightness in 256ths.
constexpr int kRedShare = 77, kGreenShare = 150, kBlueShare = 29, kOne = 256;

/// The four means of every cell of a row, one after the other, scaled by kOne.
using Means = std::vector<float>;

/// kOne times a colour difference less the brightness difference, their sizes, for one square: red, green, blue
/// and, where the alpha is 0, brightness.
inline __m128i sizesOf(__m128i differences, __m128i brightness) {
    const __m128i apart = _mm_sub_epi32(_mm_slli_epi32(differences, 8), brightness);
    const __m128i sign = _mm_srai_epi32(apart, 31);
    return _mm_sub_epi32(_mm_xor_si128(apart, sign), sign);
}

/// Adds the sizes of `count` cells in a row, from the two lines of a row of squares.
void addSquares(const Byte* upper, const Byte* lower, int count, std::int32_t* sums) {
    const __m128i zero = _mm_setzero_si128(), colours = _mm_set1_epi32(0x00ffffff);
    const __m128i shares =
        _mm_setr_epi16(kRedShare, kGreenShare, kBlueShare, 0, kRedShare, kGreenShare, kBlueShare, 0);
    const auto load = [&](const Byte* pixels) {
        return _mm_and_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(pixels)), colours);
    };
    for (int cell = 0; cell < count; ++cell, sums += kStrengths) {
        __m128i sum = _mm_loadu_si128(reinterpret_cast<const __m128i*>(sums));
        for (int half = 0; half < 2; ++half, upper += 16, lower += 16) {  // two squares
            const __m128i above = load(upper), below = load(lower);
            const __m128i first =
                _mm_sub_epi16(_mm_unpacklo_epi8(above, zero), _mm_unpacklo_epi8(below, zero));
            const __m128i second =
                _mm_sub_epi16(_mm_unpackhi_epi8(above, zero), _mm_unpackhi_epi8(below, zero));
            const __m128i d =
                _mm_sub_epi16(_mm_unpacklo_epi64(first, second), _mm_unpackhi_epi64(first, second));
            __m128i brightness = _mm_madd_epi16(d, shares);
            brightness = _mm_add_epi32(brightness, _mm_shuffle_epi32(brightness, _MM_SHUFFLE(2, 3, 0, 1)));
            sum = _mm_add_epi32(sum, sizesOf(_mm_srai_epi32(_mm_unpacklo_epi16(zero, d), 16),
                                             _mm_unpacklo_epi64(brightness, brightness)));
            sum = _mm_add_epi32(sum, sizesOf(_mm_srai_epi32(_mm_unpackhi_epi16(zero, d), 16),
                                             _mm_unpackhi_epi64(brightness, brightness)));
        }
        _mm_storeu_si128(reinterpret_cast<__m128i*>(sums), sum);
    }
}

/// The means of the cells, whose last row and column lie as far within the photograph as they fit. One that is
/// smaller than a cell along an axis repeats its last pixel there, which adds nothing.
class CellMeans {
public:
    CellMeans(const ConstImageView& photograph, int across, int down)
        : m_photograph(photograph), m_across(across), m_down(down) {}

    std::vector<float> operator()() const {
        std::vector<float> means(sampleCount(m_across, m_down, GrainMap::kStrengths));
        runTasks(m_down, rowWorkers(m_photograph.height), [&](int row) {
            fillRow(row, means.data() + sampleCount(m_across, row, GrainMap::kStrengths));
        });
        return means;
    }

private:
    void fillRow(int row, float* means) const {
        std::vector<std::int32_t> sums(sampleCount(m_across, 1, GrainMap::kStrengths));
        const int top = std::max(std::min(row * kSide, m_photograph.height - kSide), 0);
        const int whole = std::min(m_across, m_photograph.width / kSide);
        for (int i = 0; i < kSquares; ++i) {
            const Byte *upper = line(top + 2 * i), *lower = line(top + 2 * i + 1);
            addSquares(upper, lower, whole, sums.data());
            if (whole < m_across) addLast(upper, lower, sums.data() + sums.size() - kStrengths);
        }
        constexpr float kMean = 1.0f / (kSquares * kSquares * kOne);
        std::transform(sums.begin(), sums.end(), means,
                       [](std::int32_t sum) { return static_cast<float>(sum) * kMean; });
    }
    void addLast(const Byte* upper, const Byte* lower, std::int32_t* sums) const {
        std::array<Byte, std::size_t{4} * kSide> ends[2];
        for (int i = 0; i < kSide; ++i) {
            const int place = std::min(std::max(m_photograph.width - kSide, 0) + i, m_photograph.width - 1);
            std::memcpy(ends[0].data() + std::ptrdiff_t{4} * i, upper + std::ptrdiff_t{4} * place, 4);
            std::memcpy(ends[1].data() + std::ptrdiff_t{4} * i, lower + std::ptrdiff_t{4} * place, 4);
        }
        addSquares(ends[0].data(), ends[1].data(), 1, sums);
    }
    const Byte* line(int y) const { return m_photograph.row(std::min(y, m_photograph.height - 1)); }

    ConstImageView m_photograph;
    int m_across, m_down;
};

}  // namespace

void limitGrain(GrainMap& map) {
    constexpr float kOverUsual = 1.5f, kUnseen = 0.5f / 255.0f;
    std::vector<float> one(map.strengths.size() / kStrengths);
    for (std::size_t c = 0; c < kStrengths && !one.empty(); ++c) {
        for (std::size_t i = 0; i < one.size(); ++i) one[i] = map.strengths[kStrengths * i + c];
        const auto middle = one.begin() + static_cast<std::ptrdiff_t>(one.size() / 2);
        std::nth_element(one.begin(), middle, one.end());
        const float most = kOverUsual * *middle + kUnseen;
        for (std::size_t i = c; i < map.strengths.size(); i += kStrengths)
            map.strengths[i] = std::min(map.strengths[i], most);
    }
}

GrainMap grainMap(const ConstImageView& photograph) {
    GrainMap map;
    map.across = (photograph.width - 1) / kSide + 1;
    map.down = (photograph.height - 1) / kSide + 1;
    const std::vector<float> means = CellMeans(photograph, map.across, map.down)();
    map.strengths.resize(means.size());
    const float ratio = static_cast<float>(std::min(photograph.width, photograph.height)) / kUsualShortSide;
    const float apart = std::max(kApart * ratio, kLeastApart) / kSide;
    std::array<std::array<int, 2>, 3> others;
    for (std::size_t i = 0; i < others.size(); ++i)
        for (std::size_t axis = 0; axis < 2; ++axis)
            others[i][axis] = static_cast<int>(std::lround(apart * kDirections[i][axis]));
    const auto cell = [&](int x, int y) {
        return means.data() + kStrengths * (static_cast<std::size_t>(std::clamp(y, 0, map.down - 1)) *
                                                static_cast<std::size_t>(map.across) +
                                            static_cast<std::size_t>(std::clamp(x, 0, map.across - 1)));
    };
    parallelRows(map.down, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < map.across; ++x) {
                float* const out = map.strengths.data() + (cell(x, y) - means.data());
                std::copy_n(cell(x, y), kStrengths, out);
                for (const auto& [right, down] : others)
                    for (std::size_t c = 0; c < kStrengths; ++c)
                        out[c] = std::min(out[c], cell(x + right, y + down)[c]);
                for (std::size_t c = 0; c < kStrengths; ++c) out[c] = std::min(out[c] * kScale, kMost);
            }
    });
    return map;
}

}  // namespace zellab::Bokeh
