#include "zellab/imageproc/masks/maskMorphology.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "frame/processorCount.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab {

namespace {

// Both ways to join two samples are associative, and 0 changes nothing in either.

struct Maximum {
    static __m128i join(__m128i a, __m128i b) { return _mm_max_epu8(a, b); }
    static Byte join(Byte a, Byte b) { return std::max(a, b); }
};

/// A sum limited to 255 stays what it is whether limited at the end or on the way.
struct LimitedSum {
    static __m128i join(__m128i a, __m128i b) { return _mm_adds_epu8(a, b); }
    static Byte join(Byte a, Byte b) { return static_cast<Byte>(std::min(a + b, 255)); }
};

/// to[i] = join(to[i], from[i]); `from` may lie ahead of `to` in the same buffer.
template <typename Join>
void joinBytes(Byte* to, const Byte* from, std::size_t count) {
    std::size_t i = 0;
    for (; i + 16 <= count; i += 16) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(to + i));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(from + i));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(to + i), Join::join(a, b));
    }
    for (; i < count; ++i) to[i] = Join::join(to[i], from[i]);
}

/// A window around a sample: so many samples before it and after it.
struct Window {
    std::size_t before, after;

    std::size_t size() const { return before + after + 1; }
    /// Reach beyond the whole line sees nothing more.
    Window limitedTo(int length) const {
        const auto reach = static_cast<std::size_t>(length) - 1;
        return {std::min(before, reach), std::min(after, reach)};
    }
};

Window centredWindow(int radius) {
    const auto reach = static_cast<std::size_t>(radius);
    return {reach, reach};
}

/// A line with room for the window at both ends, and its result. Samples `step` bytes apart are
/// neighbours, so that a block of rows counts as one line with the row's length as step.
class FoldLine {
public:
    FoldLine(std::size_t bytes, std::size_t step, Window window)
        : m_step(step), m_window(window), m_padded(bytes + (window.size() - 1) * step), m_out(bytes) {}

    Byte* in() { return m_padded.data() + m_window.before * m_step; }

    /// Joins every window of the line that `in` holds. A window of any size is put together from windows of
    /// powers of two, each of them two of the size below.
    template <typename Join>
    const std::vector<Byte>& fold() {
        std::fill_n(m_padded.begin(), m_window.before * m_step, Byte{0});
        std::fill(m_padded.end() - static_cast<std::ptrdiff_t>(m_window.after * m_step), m_padded.end(),
                  Byte{0});
        std::fill(m_out.begin(), m_out.end(), Byte{0});
        std::size_t offset = 0;
        for (std::size_t span = 1;;) {
            if (m_window.size() & span) {
                joinBytes<Join>(m_out.data(), m_padded.data() + offset * m_step, m_out.size());
                offset += span;
            }
            if (span > m_window.size() / 2) return m_out;
            const std::size_t ahead = span * m_step;
            joinBytes<Join>(m_padded.data(), m_padded.data() + ahead, m_padded.size() - ahead);
            span *= 2;
        }
    }

private:
    std::size_t m_step;
    Window m_window;
    std::vector<Byte> m_padded, m_out;
};

/// Rows of interleaved samples.
struct Rows {
    PlaneView<Byte> bytes;
    std::size_t channels = 1;
};

template <typename Join>
void foldAlongRows(const Rows& rows, int width, Window window) {
    window = window.limitedTo(width);
    const auto count = static_cast<std::size_t>(rows.bytes.width);
    parallelRows(rows.bytes.height, [&](int begin, int end) {
        FoldLine line(count, rows.channels, window);
        for (int y = begin; y < end; ++y) {
            std::copy_n(rows.bytes.row(y), count, line.in());
            std::copy_n(line.fold<Join>().data(), count, rows.bytes.row(y));
        }
    });
}

template <typename Join>
void foldAlongColumns(const PlaneView<Byte>& bytes, Window window) {
    constexpr int kStrip = 64;  // bytes; a cache line of every row
    window = window.limitedTo(bytes.height);
    runTasks((bytes.width - 1) / kStrip + 1, ProcessorCountForRows(bytes.height), [&](int strip) {
        const int left = strip * kStrip;
        const auto width = static_cast<std::size_t>(std::min(bytes.width - left, kStrip));
        FoldLine line(static_cast<std::size_t>(bytes.height) * kStrip, kStrip, window);
        for (int y = 0; y < bytes.height; ++y)
            std::copy_n(bytes.row(y) + left, width, line.in() + std::ptrdiff_t{y} * kStrip);
        const Byte* out = line.fold<Join>().data();
        for (int y = 0; y < bytes.height; ++y)
            std::copy_n(out + std::ptrdiff_t{y} * kStrip, width, bytes.row(y) + left);
    });
}

template <typename Join>
void foldBox(const PlaneView<Byte>& plane, Window window) {
    foldAlongRows<Join>({plane}, plane.width, window);
    foldAlongColumns<Join>(plane, window);
}

/// Writes the join of kCount lines of bytes.
template <typename Join, int kCount>
void joinLines(const Byte* const* lines, std::size_t bytes, Byte* out) {
    std::size_t i = 0;
    for (; i + 16 <= bytes; i += 16) {
        const auto sixteen = [&](int k) {
            return _mm_loadu_si128(reinterpret_cast<const __m128i*>(lines[k] + i));
        };
        __m128i joined = sixteen(0);
        for (int k = 1; k < kCount; ++k) joined = Join::join(joined, sixteen(k));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), joined);
    }
    for (; i < bytes; ++i) {
        out[i] = lines[0][i];
        for (int k = 1; k < kCount; ++k) out[i] = Join::join(out[i], lines[k][i]);
    }
}

/// foldBox for small windows: both directions in one walk over the plane. Bands of rows are folded at once, each
/// from copies of the rows beyond its own, which its neighbours overwrite.
template <typename Join>
class SmallBox {
public:
    static constexpr int kMostRadius = 4;

    SmallBox(const PlaneView<Byte>& plane, int radius) : m_plane(plane), m_radius(radius) {}

    void run() {
        const int bands = (m_plane.height - 1) / kBandRows + 1, workers = rowWorkers(m_plane.height);
        m_outside = Plane<Byte>(m_plane.width, 2 * m_radius * bands);
        for (int band = 0; band < bands; ++band)
            for (int k = 0; k < 2 * m_radius; ++k)
                if (const int y = outsideRow(band, k); y >= 0 && y < m_plane.height)
                    std::copy_n(m_plane.row(y), m_plane.width, m_outside.row(2 * m_radius * band + k));
        runTasks(bands, workers, [this](int band) { foldBand(band); });
    }

private:
    static constexpr int kBandRows = 128;
    static constexpr int kMostLines = 2 * kMostRadius + 1;
    /// By the radius.
    static constexpr void (*kJoins[])(const Byte* const*, std::size_t, Byte*) = {
        joinLines<Join, 1>, joinLines<Join, 3>, joinLines<Join, 5>, joinLines<Join, 7>, joinLines<Join, 9>};

    int begin(int band) const { return band * kBandRows; }
    int end(int band) const { return std::min(begin(band) + kBandRows, m_plane.height); }
    /// The k-th row that a band needs beyond its own: those above it, then those below. May lie outside the plane.
    int outsideRow(int band, int k) const {
        return k < m_radius ? begin(band) - m_radius + k : end(band) + k - m_radius;
    }

    void foldBand(int band) {
        const int side = 2 * m_radius + 1, first = begin(band), last = end(band);
        const auto width = static_cast<std::size_t>(m_plane.width),
                   reach = static_cast<std::size_t>(m_radius);
        Plane<Byte> joined(m_plane.width, side);  // row y folded along itself at y % side
        std::vector<Byte> padded(width + 2 * reach);
        const Byte* shifted[kMostLines];
        for (int k = 0; k < side; ++k) shifted[k] = padded.data() + k;
        const Byte* lines[kMostLines];
        for (int k = 0; k < side; ++k) lines[k] = joined.row(k);
        const auto join = kJoins[m_radius];
        const auto foldRow = [&](int y) {
            const int copies = 2 * m_radius * band;
            const Byte* from = y < first   ? m_outside.row(copies + m_radius + y - first)
                               : y >= last ? m_outside.row(copies + m_radius + y - last)
                                           : m_plane.row(y);
            std::copy_n(from, width, padded.data() + reach);
            join(shifted, width, joined.row((y + side) % side));
        };
        for (int y = first - m_radius; y < first + m_radius; ++y) foldRow(y);
        for (int y = first; y < last; ++y) {
            foldRow(y + m_radius);
            join(lines, width, m_plane.row(y));
        }
    }

    PlaneView<Byte> m_plane;
    int m_radius;
    Plane<Byte> m_outside;  // of each band, 0 beyond the plane
};

/// What a scan in reading order leaves where every pixel becomes the maximum of its window and later windows
/// see it. Values then never fall along a row or down a column, so of all that was scanned before, the last
/// pixel to the left and the rightmost reach of the row above hold the maximum.
void spreadInReadingOrder(const PlaneView<Byte>& plane, int radius) {
    foldBox<Maximum>(plane, centredWindow(radius));
    for (int y = 0; y < plane.height; ++y) {
        Byte* row = plane.row(y);
        const Byte* above = y > 0 ? plane.row(y - 1) : nullptr;
        Byte left = 0;
        for (int x = 0; x < plane.width; ++x) {
            const auto reach = std::min<std::int64_t>(std::int64_t{x} + radius, plane.width - 1);
            const Byte reached = above ? above[reach] : Byte{0};
            left = row[x] = std::max({row[x], left, reached});
        }
    }
}

void invert(const PlaneView<Byte>& plane) {
    parallelRows(plane.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (Byte *p = plane.row(y), *rowEnd = p + plane.width; p < rowEnd; ++p)
                *p = static_cast<Byte>(255 - *p);
    });
}

/// @param bytes  rows of `channels` bytes a pixel
bool maximumOf(PlaneView<Byte> bytes, int channels, int size) {
    if (!bytes.valid()) return false;
    if (size < 2) return true;
    const Window window{static_cast<std::size_t>(size / 2), static_cast<std::size_t>(size - size / 2 - 1)};
    foldAlongRows<Maximum>({bytes, static_cast<std::size_t>(channels)}, bytes.width / channels, window);
    foldAlongColumns<Maximum>(bytes, window);
    return true;
}

}  // namespace

void BoxMorphology(PlaneView<Byte> plane, int radius, bool dilate) {
    // A window of one pixel gives every pixel back; a smaller one does not exist.
    if (!plane.valid() || radius < 1) return;
    if (!dilate) invert(plane);
    const std::int64_t side = 2 * std::int64_t{radius} + 1;
    if (plane.width <= side || plane.height <= side)
        spreadInReadingOrder(plane, radius);
    else if (radius <= SmallBox<LimitedSum>::kMostRadius)
        SmallBox<LimitedSum>(plane, radius).run();
    else
        foldBox<LimitedSum>(plane, centredWindow(radius));
    if (!dilate) invert(plane);
}

void MaxFilterHorizontal(PlaneView<Byte> plane, int radius) {
    if (plane.valid() && radius >= 1) foldAlongRows<Maximum>({plane}, plane.width, centredWindow(radius));
}

void MaxFilterVertical(PlaneView<Byte> plane, int radius) {
    if (plane.valid() && radius >= 1) foldAlongColumns<Maximum>(plane, centredWindow(radius));
}

bool MaxFilterBrute(PlaneView<Byte> plane, int size) {
    return maximumOf(plane, 1, size);
}

bool MaxFilterBrute(ImageView image, int size) {
    constexpr int kChannels = ImageView::kChannels;
    return maximumOf({image.data, image.width * kChannels, image.height, image.stride}, kChannels, size);
}

}  // namespace zellab
