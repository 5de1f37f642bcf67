#include "zellab/imageproc/blur/recursiveGaussian.h"

#include <immintrin.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "frame/processorCount.h"
#include "platform/simdLevel.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/core/pixelMath.h"
#include "zellab/imageproc/core/tileTranspose.h"

namespace zellab {

namespace {

constexpr float kSmallestSigma = 0.1f, kLargestSigma = 250.0f;

/// Lines that run side by side. Their floats along the longest line of a photo fit the second-level cache.
constexpr std::size_t kLanes = 32;

/// Deriche's second-order recursion, in single precision throughout.
struct Coefficients {
    float a0, a1, a2, a3;  // samples: here and before, then one and two behind
    float b1, b2;          // feedback
    float cp, cn;          // gain of a constant, forward and backward: the start states

    explicit Coefficients(float sigma) {
        const float a = 1.695f / sigma;
        const float e = std::exp(-a), e2 = std::exp(-2.0f * a);
        const float k = (1.0f - e) * (1.0f - e) / (2.0f * a * e + 1.0f - e2);
        a0 = k;
        a1 = (a - 1.0f) * k * e;
        a2 = (a + 1.0f) * k * e;
        a3 = -k * e2;
        b1 = -2.0f * e;
        b2 = e2;
        cp = (a0 + a1) / (1.0f + b1 + b2);
        cn = (a2 + a3) / (1.0f + b1 + b2);
    }
};

/// A block of kLanes lines side by side, sample i of lane j at data[i * stride + j].
struct Lines {
    Byte* data;
    std::ptrdiff_t stride;
    std::size_t length;
};

/// Blurs the lines in place; `forward` has room for (length + 2) * kLanes floats. Every lane is a line of its
/// own, so the compiler turns the inner loops into vectors, and the bits are those of a lone line.
void blurLinesPlain(const Lines& lines, const Coefficients& c, float* forward) {
    const auto sample = [&](std::size_t i) {
        return lines.data + static_cast<std::ptrdiff_t>(i) * lines.stride;
    };
    // Rows -2 and -1 of `forward` are the start state.
    for (std::size_t j = 0; j < kLanes; ++j)
        forward[j] = forward[kLanes + j] = static_cast<float>(lines.data[j]) * c.cp;
    for (std::size_t i = 0; i < lines.length; ++i) {
        const Byte *x = sample(i), *before = sample(i > 0 ? i - 1 : 0);
        const float* y2 = forward + i * kLanes;
        const float* y1 = y2 + kLanes;
        float* y = forward + (i + 2) * kLanes;
        for (std::size_t j = 0; j < kLanes; ++j)
            y[j] = c.a0 * static_cast<float>(x[j]) + c.a1 * static_cast<float>(before[j]) - c.b1 * y1[j] -
                   c.b2 * y2[j];
    }

    float x1[kLanes], x2[kLanes], z1[kLanes], z2[kLanes];
    const Byte* last = sample(lines.length - 1);
    for (std::size_t j = 0; j < kLanes; ++j) {
        x1[j] = x2[j] = static_cast<float>(last[j]);
        z1[j] = z2[j] = x1[j] * c.cn;
    }
    for (std::size_t i = lines.length; i-- > 0;) {
        Byte* x = sample(i);
        const float* y = forward + (i + 2) * kLanes;
        for (std::size_t j = 0; j < kLanes; ++j) {
            const float z = c.a2 * x1[j] + c.a3 * x2[j] - c.b1 * z1[j] - c.b2 * z2[j];
            x2[j] = x1[j];
            x1[j] = static_cast<float>(x[j]);
            z2[j] = z1[j];
            z1[j] = z;
            x[j] = truncateToByte(y[j] + z);
        }
    }
}

/// Eight samples as floats.
ZEL_TARGET_AVX2 inline __m256 eightOf(const Byte* samples) {
    return _mm256_cvtepi32_ps(
        _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(samples))));
}

/// The same steps with the state in registers.
ZEL_TARGET_AVX2 void blurLinesAvx2(const Lines& lines, const Coefficients& c, float* forward) {
    constexpr std::size_t kEight = 8, kGroups = kLanes / kEight;
    const auto sample = [&](std::size_t i) {
        return lines.data + static_cast<std::ptrdiff_t>(i) * lines.stride;
    };
    const __m256 b1 = _mm256_set1_ps(c.b1), b2 = _mm256_set1_ps(c.b2);
    {
        const __m256 a0 = _mm256_set1_ps(c.a0), a1 = _mm256_set1_ps(c.a1);
        __m256 before[kGroups], y1[kGroups], y2[kGroups];
        for (std::size_t g = 0; g < kGroups; ++g) {
            before[g] = eightOf(lines.data + kEight * g);
            y1[g] = y2[g] = _mm256_mul_ps(before[g], _mm256_set1_ps(c.cp));
        }
        for (std::size_t i = 0; i < lines.length; ++i)
            for (std::size_t g = 0; g < kGroups; ++g) {
                const __m256 x = eightOf(sample(i) + kEight * g);
                const __m256 fed = _mm256_add_ps(_mm256_mul_ps(a0, x), _mm256_mul_ps(a1, before[g]));
                const __m256 y =
                    _mm256_sub_ps(_mm256_sub_ps(fed, _mm256_mul_ps(b1, y1[g])), _mm256_mul_ps(b2, y2[g]));
                _mm256_storeu_ps(forward + i * kLanes + kEight * g, y);
                before[g] = x, y2[g] = y1[g], y1[g] = y;
            }
    }
    const __m256 a2 = _mm256_set1_ps(c.a2), a3 = _mm256_set1_ps(c.a3);
    // The packs work half by half; this puts the groups of four bytes back in a row.
    const __m256i order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    __m256 x1[kGroups], x2[kGroups], z1[kGroups], z2[kGroups];
    for (std::size_t g = 0; g < kGroups; ++g) {
        x1[g] = x2[g] = eightOf(sample(lines.length - 1) + kEight * g);
        z1[g] = z2[g] = _mm256_mul_ps(x1[g], _mm256_set1_ps(c.cn));
    }
    for (std::size_t i = lines.length; i-- > 0;) {
        __m256i whole[kGroups];
        for (std::size_t g = 0; g < kGroups; ++g) {
            const __m256 fed = _mm256_add_ps(_mm256_mul_ps(a2, x1[g]), _mm256_mul_ps(a3, x2[g]));
            const __m256 z =
                _mm256_sub_ps(_mm256_sub_ps(fed, _mm256_mul_ps(b1, z1[g])), _mm256_mul_ps(b2, z2[g]));
            x2[g] = x1[g], x1[g] = eightOf(sample(i) + kEight * g);
            z2[g] = z1[g], z1[g] = z;
            whole[g] =
                _mm256_cvttps_epi32(_mm256_add_ps(_mm256_loadu_ps(forward + i * kLanes + kEight * g), z));
        }
        static_assert(kGroups == 4);
        const __m256i packed = _mm256_packus_epi16(_mm256_packs_epi32(whole[0], whole[1]),
                                                   _mm256_packs_epi32(whole[2], whole[3]));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(sample(i)),
                            _mm256_permutevar8x32_epi32(packed, order));
    }
}

/// The picture, and which bytes of it are blurred.
struct Picture {
    Byte* data;
    std::ptrdiff_t width, height, stride, step;  // step: bytes a pixel, 1 or 4
};

/// Copies `count` pixels of kBytes bytes.
template <std::size_t kBytes>
void copyPixels(const Byte* from, std::ptrdiff_t fromStep, Byte* to, std::ptrdiff_t toStep,
                std::ptrdiff_t count) {
    constexpr std::ptrdiff_t kTight = kBytes;
    if (fromStep == kTight && toStep == kTight)
        std::memcpy(to, from, kBytes * static_cast<std::size_t>(count));
    else
        for (std::ptrdiff_t j = 0; j < count; ++j) std::memcpy(to + j * toStep, from + j * fromStep, kBytes);
}

/// Copies four pixels without their alpha.
inline void putFourColours(const Byte* from, Byte* to) {
    const __m128i alpha = _mm_set1_epi32(static_cast<int>(0xff000000u));
    const __m128i fresh = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from));
    auto* const target = reinterpret_cast<__m128i*>(to);
    _mm_storeu_si128(
        target, _mm_or_si128(_mm_andnot_si128(alpha, fresh), _mm_and_si128(alpha, _mm_loadu_si128(target))));
}

/// One pass over blocks of lines. Every block is gathered into a scratch with its lines as lanes, blurred
/// there and put back, without the bytes that a blur leaves alone.
class Pass {
public:
    Pass(const Picture& picture, float sigma, bool alongRows)
        : m_picture(picture),
          m_coefficients(std::min(sigma, kLargestSigma)),
          m_alongRows(alongRows),
          m_blur(platform::pick(platform::simdLevel(), blurLinesPlain, blurLinesAvx2)) {
        m_pixelsAtOnce = static_cast<std::ptrdiff_t>(kLanes) / lanesOfPixel();
    }

    void run(int workers) const {
        const std::ptrdiff_t across = m_alongRows ? m_picture.height : m_picture.width;
        const std::ptrdiff_t blocks = (across - 1) / m_pixelsAtOnce + 1;
        // Neighbouring blocks share cache lines and pages, and a worker its scratch: few long tasks.
        const std::ptrdiff_t tasks = std::min<std::ptrdiff_t>(blocks, std::max(workers, 1) * 4);
        runTasks(static_cast<int>(tasks), workers, [&](int task) {
            std::vector<float> forward((static_cast<std::size_t>(length()) + 2) * kLanes);
            std::vector<Byte> scratch(static_cast<std::size_t>(length()) * kLanes);
            for (std::ptrdiff_t b = blocks * task / tasks; b < blocks * (task + 1) / tasks; ++b)
                blurBlock(b * m_pixelsAtOnce, std::min(m_pixelsAtOnce, across - b * m_pixelsAtOnce), scratch,
                          forward);
        });
    }

private:
    std::ptrdiff_t length() const { return m_alongRows ? m_picture.width : m_picture.height; }
    std::ptrdiff_t lanesOfPixel() const { return m_picture.step; }

    void blurBlock(std::ptrdiff_t first, std::ptrdiff_t count, std::vector<Byte>& scratch,
                   std::vector<float>& forward) const {
        move(first, count, scratch.data(), true);
        m_blur({scratch.data(), kLanes, static_cast<std::size_t>(length())}, m_coefficients, forward.data());
        move(first, count, scratch.data(), false);
    }

    /// Moves the block in or out of the scratch, all bytes in, the blurred ones out. Lanes beyond the last
    /// line keep what they hold.
    void move(std::ptrdiff_t first, std::ptrdiff_t count, Byte* scratch, bool in) const {
        if (count == m_pixelsAtOnce) {
            if (m_alongRows && lanesOfPixel() == 1) return turnBytes(first, scratch, in);
            if (m_alongRows) return turnPixels(first, scratch, in);
            if (lanesOfPixel() == 4 && !in) return putColours(first, scratch);
        }
        const std::ptrdiff_t lanes = lanesOfPixel(), across = m_alongRows ? m_picture.stride : m_picture.step;
        const std::ptrdiff_t along = m_alongRows ? m_picture.step : m_picture.stride;
        Byte* line = m_picture.data + first * across;
        const auto copyIn = lanes == 4 ? copyPixels<4> : copyPixels<1>;
        const auto copyOut = lanes == 4 ? copyPixels<3> : copyPixels<1>;
        for (std::ptrdiff_t i = 0; i < length(); ++i, scratch += kLanes, line += along)
            if (in)
                copyIn(line, across, scratch, lanes, count);
            else
                copyOut(scratch, lanes, line, across, count);
    }

    /// Moves a whole block of rows of a plane, which stand across in the scratch.
    void turnBytes(std::ptrdiff_t first, Byte* scratch, bool in) const {
        constexpr std::ptrdiff_t kSide = 8;
        const auto stride = static_cast<std::size_t>(m_picture.stride);
        for (std::size_t lane = 0; lane < kLanes; lane += kSide) {
            Byte* const rows =
                m_picture.data + (first + static_cast<std::ptrdiff_t>(lane)) * m_picture.stride;
            std::ptrdiff_t x = 0;
            for (; x + kSide <= length(); x += kSide) {
                Byte* const column = scratch + x * static_cast<std::ptrdiff_t>(kLanes) + lane;
                if (in)
                    transposeBytes8x8(rows + x, stride, column, kLanes);
                else
                    transposeBytes8x8(column, kLanes, rows + x, stride);
            }
            for (; x < length(); ++x)
                for (std::ptrdiff_t k = 0; k < kSide; ++k) {
                    Byte &inside = scratch[x * static_cast<std::ptrdiff_t>(kLanes) +
                                           static_cast<std::ptrdiff_t>(lane) + k],
                         &outside = rows[k * m_picture.stride + x];
                    if (in)
                        inside = outside;
                    else
                        outside = inside;
                }
        }
    }

    /// The same for the rows of a picture; alpha stays.
    void turnPixels(std::ptrdiff_t first, Byte* scratch, bool in) const {
        constexpr std::ptrdiff_t kSide = 4, kTile = 4 * kSide;
        const auto stride = static_cast<std::size_t>(m_picture.stride);
        constexpr auto kLine = static_cast<std::ptrdiff_t>(kLanes);
        for (std::ptrdiff_t row = 0; row < m_pixelsAtOnce; row += kSide) {
            Byte* const rows = m_picture.data + (first + row) * m_picture.stride;
            std::ptrdiff_t x = 0;
            for (; x + kSide <= length(); x += kSide) {
                Byte* const columns = scratch + x * kLine + 4 * row;
                if (in) {
                    transposePixels4x4(rows + 4 * x, stride, columns, kLanes);
                    continue;
                }
                Byte turned[kTile * kSide];
                transposePixels4x4(columns, kLanes, turned, static_cast<std::size_t>(kTile));
                for (std::ptrdiff_t k = 0; k < kSide; ++k)
                    putFourColours(turned + k * kTile, rows + k * m_picture.stride + 4 * x);
            }
            for (; x < length(); ++x)
                for (std::ptrdiff_t k = 0; k < kSide; ++k) {
                    Byte *inside = scratch + x * kLine + 4 * (row + k),
                         *outside = rows + k * m_picture.stride + 4 * x;
                    if (in)
                        std::memcpy(inside, outside, 4);
                    else
                        std::memcpy(outside, inside, 3);
                }
        }
    }

    /// Puts a whole block of a picture's columns back.
    void putColours(std::ptrdiff_t first, const Byte* scratch) const {
        Byte* line = m_picture.data + first * m_picture.step;
        for (std::ptrdiff_t i = 0; i < length(); ++i, scratch += kLanes, line += m_picture.stride) {
            putFourColours(scratch, line);
            putFourColours(scratch + 16, line + 16);
        }
    }

    Picture m_picture;
    Coefficients m_coefficients;
    bool m_alongRows;
    void (*m_blur)(const Lines&, const Coefficients&, float*);
    std::ptrdiff_t m_pixelsAtOnce;
};

void blurAxes(const Picture& picture, float sigmaX, float sigmaY) {
    const int workers = ProcessorCountForRows(static_cast<int>(picture.height));
    // NaN fails both comparisons and leaves its axis alone.
    if (picture.width > 1 && sigmaX >= kSmallestSigma) Pass(picture, sigmaX, true).run(workers);
    if (picture.height > 1 && sigmaY >= kSmallestSigma) Pass(picture, sigmaY, false).run(workers);
}

}  // namespace

bool RecursiveGaussianBlur(ImageView image, float sigmaX, float sigmaY) {
    if (!image.valid()) return false;
    blurAxes({image.data, image.width, image.height, image.stride, ImageView::kChannels}, sigmaX, sigmaY);
    return true;
}

bool RecursiveGaussianBlur(PlaneView<Byte> plane, float sigmaX, float sigmaY) {
    if (!plane.valid()) return false;
    blurAxes({plane.data, plane.width, plane.height, plane.stride, 1}, sigmaX, sigmaY);
    return true;
}

}  // namespace zellab
