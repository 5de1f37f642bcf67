#include "zellab/imageproc/masks/floodFill.h"

#include <emmintrin.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

namespace {

constexpr Byte kFilled = 255;

/// One bit per byte of the sixteen at p: set where the byte is zero.
inline unsigned zeroBits(const Byte* p) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_setzero_si128())));
}

constexpr unsigned kSixteenBits = 0xffff;

/// First x in [begin, end) whose byte is zero, or not zero; `end` if there is none.
template <bool kZero>
int findFrom(const Byte* row, int begin, int end) {
    int x = begin;
    for (; x + 16 <= end; x += 16) {
        const unsigned bits = kZero ? zeroBits(row + x) : ~zeroBits(row + x) & kSixteenBits;
        if (bits) return x + std::countr_zero(bits);
    }
    while (x < end && (row[x] == 0) != kZero) ++x;
    return x;
}

/// Start of the run of zeros that ends before `end`.
int runStart(const Byte* row, int end) {
    int x = end;
    for (; x >= 16; x -= 16) {
        const unsigned bits = ~zeroBits(row + x - 16) & kSixteenBits;
        if (bits) return x - 16 + std::bit_width(bits);
    }
    while (x > 0 && row[x - 1] == 0) --x;
    return x;
}

/// A filled run whose row `y + direction` is still to be looked at, over [left, right).
struct Span {
    int y, left, right, direction;
};

class Filler {
public:
    explicit Filler(const PlaneView<Byte>& mask) : m_mask(mask) {}

    void run(int x, int y) {
        if (m_mask.row(y)[x] != 0) return;
        fillRun(y, x, 1, x, x);
        while (!m_spans.empty()) {
            const Span span = m_spans.back();
            m_spans.pop_back();
            const int next = span.y + span.direction;
            if (next < 0 || next >= m_mask.height) continue;
            const Byte* row = m_mask.row(next);
            for (int at = findFrom<true>(row, span.left, span.right); at < span.right;
                 at = findFrom<true>(row, at, span.right))
                at = fillRun(next, at, span.direction, span.left, span.right);
        }
    }

private:
    /// Fills the run of zeros around x and notes where to go on: the whole run away from where it was
    /// reached, and back only where it reaches past [left, right), the span it was reached from. Returns the
    /// run's end.
    int fillRun(int y, int x, int direction, int left, int right) {
        Byte* row = m_mask.row(y);
        const int begin = runStart(row, x), end = findFrom<false>(row, x, m_mask.width);
        std::memset(row + begin, kFilled, static_cast<std::size_t>(end - begin));
        m_spans.push_back({y, begin, end, direction});
        if (begin < left) m_spans.push_back({y, begin, left, -direction});
        if (end > right) m_spans.push_back({y, right, end, -direction});
        return end;
    }

    PlaneView<Byte> m_mask;
    std::vector<Span> m_spans;
};

}  // namespace

void ScanlineFloodFill(PlaneView<Byte> mask, int seedX, int seedY) {
    if (!mask.valid()) return;
    Filler(mask).run(std::clamp(seedX, 0, mask.width - 1), std::clamp(seedY, 0, mask.height - 1));
}

}  // namespace zellab
