#include "zellab/imageproc/edgeaware/guidedFilterColor.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <type_traits>
#include <vector>

#include "platform/simdLevel.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab {

namespace {

/// No picture is larger. A wider window would hold nothing but more of the rim.
constexpr int kMostRadius = 32767;
/// Up to this radius the sum of a window of white products fits 32 bits with a sign.
constexpr int kMostNarrowRadius = 90;
/// Rows that a worker takes at once: the start of a band reads a whole window of rows.
constexpr int kLeastBandRows = 64;

/// A float a pixel for nine quantities of one row.
class NineRowBuffer {
public:
    explicit NineRowBuffer(int width)
        : m_stride(static_cast<std::size_t>(width)),
          m_values(std::make_unique_for_overwrite<float[]>(kMoments * m_stride)) {}
    NineRows<float> rows() const { return {m_values.get(), m_stride}; }

private:
    std::size_t m_stride;
    std::unique_ptr<float[]> m_values;
};

/// What a window is: the means of the three colours and of their six products. Windows slide down the
/// picture: every column keeps the sums of its rows. Sum is unsigned; differences of sums that wrapped are
/// right as long as one window's sum fits.
template <typename Sum>
class WindowMoments {
public:
    WindowMoments(ConstImageView source, int radius, const std::array<int, 256>& squares)
        : m_source(source),
          m_radius(radius),
          m_squares(squares),
          m_columns(kMoments * static_cast<std::size_t>(source.width)),
          m_running(static_cast<std::size_t>(source.width) + 2 * static_cast<std::size_t>(radius) + 2) {}

    void startAt(int y) {
        m_y = y;
        std::fill(m_columns.begin(), m_columns.end(), Sum{0});
        const int last = m_source.height - 1;
        add(0, static_cast<Sum>(std::max(m_radius - y, 0)));
        add(last, static_cast<Sum>(std::max(y + m_radius - last, 0)));
        for (int row = std::max(y - m_radius, 0); row <= std::min(y + m_radius, last); ++row) add(row, 1);
    }

    void moveDown() {
        const int last = m_source.height - 1;
        const Byte* enter = m_source.row(std::min(m_y + m_radius + 1, last));
        const Byte* leave = m_source.row(std::max(m_y - m_radius, 0));
        ++m_y;
        if (enter == leave) return;
        for (int x = 0; x < m_source.width; ++x) {
            const Products in(enter + std::ptrdiff_t{4} * x, m_squares),
                out(leave + std::ptrdiff_t{4} * x, m_squares);
            for (std::size_t i = 0; i < kMoments; ++i)
                column(i)[x] += static_cast<Sum>(static_cast<std::make_signed_t<Sum>>(in.of[i] - out.of[i]));
        }
    }

    void means(NineRows<float> out) {
        const std::size_t size = 2 * static_cast<std::size_t>(m_radius) + 1;
        const float pixels = static_cast<float>(size) * static_cast<float>(size);
        for (std::size_t i = 0; i < kMoments; ++i) {
            runAlong(column(i));
            const Sum* const running = m_running.data();
            float* const row = out[i];
            for (std::ptrdiff_t x = 0; x < m_source.width; ++x)
                row[x] = static_cast<float>(static_cast<std::make_signed_t<Sum>>(
                             running[x + static_cast<std::ptrdiff_t>(size)] - running[x])) /
                         pixels;
        }
    }

private:
    struct Products {
        std::array<int, kMoments> of;

        Products(const Byte* p, const std::array<int, 256>& squares)
            : of{p[0],        p[1],          p[2],        squares[p[0]], p[0] * p[1],
                 p[0] * p[2], squares[p[1]], p[1] * p[2], squares[p[2]]} {}
    };

    Sum* column(std::size_t moment) {
        return m_columns.data() + moment * static_cast<std::size_t>(m_source.width);
    }

    void add(int row, Sum times) {
        if (times == 0) return;
        for (int x = 0; x < m_source.width; ++x) {
            const Products in(m_source.at(x, row), m_squares);
            for (std::size_t i = 0; i < kMoments; ++i) column(i)[x] += times * static_cast<Sum>(in.of[i]);
        }
    }

    /// Running sums along the row, whose ends go on for a radius to either side.
    void runAlong(const Sum* columns) {
        const int width = m_source.width;
        Sum* running = m_running.data();
        Sum sum = 0;
        *running++ = sum;
        for (int i = 0; i < m_radius; ++i) *running++ = sum += columns[0];
        for (int x = 0; x < width; ++x) *running++ = sum += columns[x];
        for (int i = 0; i < m_radius; ++i) *running++ = sum += columns[width - 1];
    }

    ConstImageView m_source;
    int m_radius, m_y = 0;
    const std::array<int, 256>& m_squares;
    std::vector<Sum> m_columns, m_running;
};

/// Models of the rows of one band, from the top down.
template <typename Sum>
class ModelRows {
public:
    ModelRows(ConstImageView source, int radius, const std::array<int, 256>& squares, const RootTables& roots,
              const GainCurve& curve, platform::SimdLevel level, int firstRow)
        : m_moments(source, radius, squares),
          m_means(source.width),
          m_roots(roots),
          m_curve(curve),
          m_level(level),
          m_width(source.width),
          m_next(firstRow) {
        m_moments.startAt(firstRow);
    }

    int next() const { return m_next; }

    /// Writes the models of row next(), and moves on.
    void read(NineRows<float> models) {
        if (m_started) m_moments.moveDown();
        m_started = true;
        m_moments.means(m_means.rows());
        const int done = m_level == platform::SimdLevel::avx2
                             ? coefficientRowAvx2(m_roots, m_curve, m_means.rows(), models, m_width)
                             : 0;
        coefficientRow(m_roots, m_curve, m_means.rows(), models, done, m_width);
        ++m_next;
    }

private:
    WindowMoments<Sum> m_moments;
    NineRowBuffer m_means;
    const RootTables& m_roots;
    const GainCurve& m_curve;
    platform::SimdLevel m_level;
    int m_width, m_next;
    bool m_started = false;
};

/// The window means of models. Sums are kept in double precision and start anew in every band, so bands must
/// not depend on the number of workers.
template <typename Sum>
class SmoothModelRows {
public:
    /// `source` starts at the first row that the windows of the band reach.
    SmoothModelRows(ModelRows<Sum>& source, int width, int height, int radius, int firstRow)
        : m_source(source),
          m_width(width),
          m_last(height - 1),
          m_radius(radius),
          m_y(firstRow),
          m_columns(kCoefficients * static_cast<std::size_t>(width)) {
        for (int i = 0; i < std::min(2 * radius + 1, height); ++i) m_ring.emplace_back(width);
        // Rows come in order and stay only as long as a window needs them.
        if (firstRow < radius) change(row(0), radius - firstRow);
        for (int y = std::max(firstRow - radius, 0); y <= std::min(firstRow + radius, m_last); ++y)
            change(row(y), 1);
        if (firstRow + radius > m_last) change(row(m_last), firstRow + radius - m_last);
    }

    void moveDown() {
        change(row(m_y - m_radius), -1);
        ++m_y;
        change(row(m_y + m_radius), 1);
    }

    void means(NineRows<float> out) const {
        const float side = 2.0f * static_cast<float>(m_radius) + 1.0f;
        const float share = 1.0f / (side * side);
        for (std::size_t i = 0; i < kCoefficients; ++i) {
            const double* const column = m_columns.data() + i * static_cast<std::size_t>(m_width);
            const int right = m_width - 1;
            double sum = column[0] * m_radius + column[right] * std::max(m_radius - right, 0);
            for (int x = 0; x <= std::min(m_radius, right); ++x) sum += column[x];
            float* const row = out[i];
            for (int x = 0; x < m_width; ++x) {
                row[x] = static_cast<float>(sum) * share;
                sum += column[std::min(x + m_radius + 1, right)] - column[std::max(x - m_radius, 0)];
            }
        }
    }

private:
    /// The models of row y, or of the row at the picture's end beyond which y lies.
    NineRows<const float> row(int y) {
        const int inside = std::clamp(y, 0, m_last);
        while (m_source.next() <= inside) m_source.read(slot(m_source.next()));
        return slot(inside);
    }
    NineRows<float> slot(int y) const { return m_ring[static_cast<std::size_t>(y) % m_ring.size()].rows(); }

    void change(NineRows<const float> models, int times) {
        const std::size_t count = m_columns.size();
        for (std::size_t i = 0; i < count; ++i) m_columns[i] += static_cast<double>(models.first[i]) * times;
    }

    ModelRows<Sum>& m_source;
    int m_width, m_last, m_radius, m_y;
    std::vector<NineRowBuffer> m_ring;
    std::vector<double> m_columns;
};

struct Job {
    ConstImageView source;
    ImageView target;
    int radius;
    bool smooth;
    const std::array<int, 256>& squares;
    const RootTables& roots;
    GainCurve curve;
    platform::SimdLevel level;

    template <typename Sum>
    void filterBand(int begin, int end) const {
        const NineRowBuffer models(source.width);
        const int first = smooth ? std::max(begin - radius, 0) : begin;
        ModelRows<Sum> plain(source, radius, squares, roots, curve, level, first);
        if (!smooth) {
            for (int y = begin; y < end; ++y) {
                plain.read(models.rows());
                apply(models.rows(), y);
            }
            return;
        }
        SmoothModelRows<Sum> smoothed(plain, source.width, source.height, radius, begin);
        for (int y = begin; y < end; ++y) {
            if (y > begin) smoothed.moveDown();
            smoothed.means(models.rows());
            apply(models.rows(), y);
        }
    }

    void apply(NineRows<const float> models, int y) const {
        Byte* const rgba = target.row(y);
        const bool wide = level == platform::SimdLevel::avx2;
        const int done = wide ? applyModelRowAvx2(models, rgba, target.width) : 0;
        applyModelRow(models, rgba, done, target.width);
    }
};

}  // namespace

GuidedFilterColor::GuidedFilterColor() {
    for (int i = 0; i < 256; ++i) m_squares[static_cast<std::size_t>(i)] = i * i;
}

void GuidedFilterColor::Run(ImageView image, float exponent, float scale, float factor, int radius,
                            bool smoothCoefficients) const {
    if (!image.valid() || radius < 0) return;
    if (!std::isfinite(exponent) || !std::isfinite(scale) || !std::isfinite(factor)) return;
    radius = std::min(radius, kMostRadius);

    // Bands are filtered in place while their neighbours still read the rows as they were.
    const int width = image.width, height = image.height;
    const auto bytes = std::make_unique_for_overwrite<Byte[]>(sampleCount(width, height, 4));
    const ImageView before(bytes.get(), width, height);
    const int bandRows = std::max(kLeastBandRows, 4 * radius), bands = (height - 1) / bandRows + 1;
    const int workers = rowWorkers(height);
    const auto rowsOf = [&](int band) {
        return std::pair{band * bandRows, band * bandRows + std::min(bandRows, height - band * bandRows)};
    };
    runTasks(bands, workers, [&](int band) {
        const auto [begin, end] = rowsOf(band);
        copyPixels(image.crop(0, begin, width, end - begin), before.crop(0, begin, width, end - begin));
    });
    const Job job = {before,
                     image,
                     radius,
                     smoothCoefficients,
                     m_squares,
                     m_roots,
                     GainCurve(exponent, scale, factor),
                     platform::simdLevel()};
    runTasks(bands, workers, [&](int band) {
        const auto [begin, end] = rowsOf(band);
        if (radius <= kMostNarrowRadius)
            job.filterBand<std::uint32_t>(begin, end);
        else
            job.filterBand<std::uint64_t>(begin, end);
    });
}

}  // namespace zellab
