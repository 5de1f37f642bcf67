#include "zellab/imageproc/blur/recursiveGaussian.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "frame/processorCount.h"
#include "platform/simdLevel.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/core/pixelMath.h"

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
[[gnu::always_inline]] inline void blurLines(const Lines& lines, const Coefficients& c, float* forward) {
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

void blurLinesPlain(const Lines& lines, const Coefficients& c, float* forward) {
    blurLines(lines, c, forward);
}
ZEL_TARGET_AVX2 void blurLinesAvx2(const Lines& lines, const Coefficients& c, float* forward) {
    blurLines(lines, c, forward);
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
