#include "zellab/imageproc/resample/imageResampler.h"

#include <algorithm>
#include <cstring>

#include "frame/processorCount.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/resample/resampleKernels.h"

namespace zellab {

namespace {

/// Rows a worker takes at least: each band filters its first rows' neighbours once more.
constexpr int kFewestBandRows = 32;

/// Everything that the bands of one call share.
struct Job {
    /// Rows of a picture or a plane.
    template <typename B>
    struct Samples {
        B* data;
        int width, height;      // pixels
        std::ptrdiff_t stride;  // bytes

        B* row(int y) const { return data + y * stride; }
    };

    Samples<const Byte> source;
    Samples<Byte> target;
    int channels;
    AxisFilter columns, lines;
    HorizontalKernel horizontal;
    VerticalKernel vertical;

    template <typename From, typename To>
    Job(const From& from, const To& to, int channelCount, int quality)
        : source{from.data, from.width, from.height, from.stride},
          target{to.data, to.width, to.height, to.stride},
          channels(channelCount),
          columns(buildAxisFilter(from.width, to.width, quality)),
          lines(buildAxisFilter(from.height, to.height, quality)),
          horizontal(horizontalKernel(platform::simdLevel(), channels, columns)),
          vertical(verticalKernel(platform::simdLevel(), lines.taps)) {}

    std::size_t sourceRowBytes() const { return sampleCount(source.width, 1, channels); }
    std::size_t targetRowBytes() const { return sampleCount(target.width, 1, channels); }
};

/// A source-wide row with its end samples repeated on both sides, as far as the kernel reads.
class PaddedRow {
public:
    explicit PaddedRow(const Job& job) : m_width(job.source.width), m_channels(job.channels) {
        const std::ptrdiff_t lowest = job.columns.first.front();
        const std::ptrdiff_t end =
            std::ptrdiff_t{job.columns.first.back()} + job.columns.rowLength + job.columns.slack;
        m_before = std::max<std::ptrdiff_t>(0, -lowest);
        m_after = std::max<std::ptrdiff_t>(0, end - m_width);
        if (needed()) m_bytes.resize(static_cast<std::size_t>((m_before + m_width + m_after) * m_channels));
    }

    /// Whether the kernel reads past the row's ends at all.
    bool needed() const { return m_before > 0 || m_after > 0; }

    Byte* samples() { return m_bytes.data() + m_before * m_channels; }

    void repeatEnds() {
        const Byte* firstSample = samples();
        const Byte* lastSample = firstSample + (std::ptrdiff_t{m_width} - 1) * m_channels;
        repeat(m_bytes.data(), m_before, firstSample);
        repeat(samples() + std::ptrdiff_t{m_width} * m_channels, m_after, lastSample);
    }

private:
    void repeat(Byte* out, std::ptrdiff_t count, const Byte* sample) const {
        for (std::ptrdiff_t i = 0; i < count; ++i)
            std::memcpy(out + i * m_channels, sample, static_cast<std::size_t>(m_channels));
    }

    std::ptrdiff_t m_width, m_channels, m_before, m_after;
    std::vector<Byte> m_bytes;
};

/// Points at the rows under the taps of an output row, limited to the source; rowAt(y) gives the row.
template <typename RowAt>
void collectRows(const Job& job, int y, std::vector<const Byte*>& rows, const RowAt& rowAt) {
    const std::ptrdiff_t first = job.lines.first[static_cast<std::size_t>(y)];
    for (int k = 0; k < job.lines.taps; ++k) {
        const auto at = std::clamp<std::ptrdiff_t>(first + k, 0, std::ptrdiff_t{job.source.height} - 1);
        rows[static_cast<std::size_t>(k)] = rowAt(static_cast<int>(at));
    }
}

/// Target rows [begin, end): source rows filtered along x into a ring, then mixed.
void resizeRowsFirst(const Job& job, int begin, int end) {
    PaddedRow padded(job);
    const std::size_t bytes = job.targetRowBytes();
    const int slots = std::min(job.lines.taps, job.source.height);
    std::vector<Byte> ring(static_cast<std::size_t>(slots) * bytes);
    std::vector<const Byte*> rows(static_cast<std::size_t>(job.lines.taps));
    int filtered = -1;  // the last source row in the ring
    for (int y = begin; y < end; ++y) {
        const auto ringRow = [&](int at) {
            Byte* slot = ring.data() + static_cast<std::size_t>(at % slots) * bytes;
            if (at <= filtered) return slot;
            const Byte* source = job.source.row(at);
            if (padded.needed()) {
                std::memcpy(padded.samples(), source, job.sourceRowBytes());
                padded.repeatEnds();
                source = padded.samples();
            }
            job.horizontal(source, job.columns, static_cast<std::size_t>(job.target.width), slot);
            filtered = at;
            return slot;
        };
        collectRows(job, y, rows, ringRow);
        job.vertical(rows.data(), job.lines.weightsOf(static_cast<std::size_t>(y)), job.lines.taps, bytes,
                     job.target.row(y));
    }
}

/// Target rows [begin, end): source rows mixed, then filtered along x.
void resizeColumnsFirst(const Job& job, int begin, int end) {
    PaddedRow padded(job);
    std::vector<Byte> plain(padded.needed() ? 0 : job.sourceRowBytes());
    Byte* mixed = padded.needed() ? padded.samples() : plain.data();
    std::vector<const Byte*> rows(static_cast<std::size_t>(job.lines.taps));
    for (int y = begin; y < end; ++y) {
        collectRows(job, y, rows, [&](int at) { return job.source.row(at); });
        job.vertical(rows.data(), job.lines.weightsOf(static_cast<std::size_t>(y)), job.lines.taps,
                     job.sourceRowBytes(), mixed);
        if (padded.needed()) padded.repeatEnds();
        job.horizontal(mixed, job.columns, static_cast<std::size_t>(job.target.width), job.target.row(y));
    }
}

void resize(const Job& job, int threads) {
    // The pass that leaves the smaller picture in between goes first.
    const bool rowsFirst = std::int64_t{job.source.height} * job.target.width <=
                           std::int64_t{job.source.width} * job.target.height;
    const int height = job.target.height;
    const int bands = std::clamp(height / kFewestBandRows, 1, std::max(threads, 1));
    const int bandRows = (height - 1) / bands + 1;
    runTasks(bands, threads, [&](int band) {
        const std::int64_t first = std::int64_t{band} * bandRows;
        const int begin = static_cast<int>(std::min<std::int64_t>(first, height));
        const int end = static_cast<int>(std::min<std::int64_t>(first + bandRows, height));
        (rowsFirst ? resizeRowsFirst : resizeColumnsFirst)(job, begin, end);
    });
}

template <typename From, typename To>
bool resizeOrCopy(const From& source, const To& target, int channels, int quality, int threads) {
    if (!source.valid() || !target.valid()) return false;
    if (source.width == target.width && source.height == target.height)
        copyPixels(source, target);
    else
        resize(Job(source, target, channels, quality), threads);
    return true;
}

}  // namespace

ImageResampler::ImageResampler() : m_threads(ProcessorCount()) {}

bool ImageResampler::Resize(ConstImageView source, ImageView target, int quality) const {
    return resizeOrCopy(source, target, ImageView::kChannels, quality, m_threads);
}

bool ImageResampler::Resize(PlaneView<const Byte> source, PlaneView<Byte> target, int quality) const {
    return resizeOrCopy(source, target, 1, quality, m_threads);
}

}  // namespace zellab
