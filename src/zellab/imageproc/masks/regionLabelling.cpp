#include "zellab/imageproc/masks/regionLabelling.h"

#include <emmintrin.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <numeric>
#include <vector>

#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab {

namespace {

constexpr Byte kForeground = 128;
constexpr int kBandRows = 64;

/// Foreground pixels [start, end) of one row.
struct Run {
    int start, end;
};

/// The runs of a band of rows, and where each row's runs begin.
struct Band {
    std::vector<Run> runs;
    std::vector<std::size_t> rowStart;
    std::size_t firstRun = 0;  // number of the band's first run in the whole picture
};

/// One bit per pixel of up to 64 pixels: foreground is the byte's top bit.
std::uint64_t foregroundBits(const Byte* p, int count) {
    std::uint64_t bits = 0;
    int x = 0;
    for (; x + 16 <= count; x += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + x));
        bits |= std::uint64_t{static_cast<unsigned>(_mm_movemask_epi8(bytes))} << x;
    }
    for (; x < count; ++x) bits |= std::uint64_t{p[x] >= kForeground} << x;
    return bits;
}

void appendRuns(const Byte* row, int width, std::vector<Run>& runs) {
    bool open = false;  // whether a run reaches over the last word's end
    for (int x = 0; x < width; x += 64) {
        const int count = std::min(width - x, 64);
        std::uint64_t bits = foregroundBits(row + x, count);
        int at = 0;
        if (open) {
            at = std::countr_one(bits);
            runs.back().end = x + at;
            if (at == 64) continue;
        }
        open = false;
        bits = bits >> at << at;
        while (bits) {
            const int start = std::countr_zero(bits), length = std::countr_one(bits >> start);
            const int end = start + length;
            runs.push_back({x + start, x + end});
            open = end == 64;
            bits = open ? 0 : bits >> end << end;
        }
    }
}

/// Sets of runs; the root of a set is its lowest run.
class RunSets {
public:
    explicit RunSets(std::size_t count) : m_parent(count) { std::iota(m_parent.begin(), m_parent.end(), 0u); }

    std::uint32_t root(std::uint32_t run) {
        while (m_parent[run] != run) run = m_parent[run] = m_parent[m_parent[run]];
        return run;
    }
    void unite(std::uint32_t a, std::uint32_t b) {
        const std::uint32_t rootA = root(a), rootB = root(b);
        m_parent[std::max(rootA, rootB)] = std::min(rootA, rootB);
    }

private:
    std::vector<std::uint32_t> m_parent;
};

/// Unites the runs of a row with those of the row above that they touch, diagonals included.
void uniteRows(const Run* above, const Run* aboveEnd, std::uint32_t aboveFirst, const Run* row,
               const Run* rowEnd, std::uint32_t rowFirst, RunSets& sets) {
    const Run *a = above, *r = row;
    while (a < aboveEnd && r < rowEnd) {
        if (a->start <= r->end && r->start <= a->end)
            sets.unite(aboveFirst + static_cast<std::uint32_t>(a - above),
                       rowFirst + static_cast<std::uint32_t>(r - row));
        // The run that ends first can touch nothing further on.
        if (a->end < r->end)
            ++a;
        else
            ++r;
    }
}

class Labeller {
public:
    Labeller(const PlaneView<const Byte>& plane, const PlaneView<int>& labels)
        : m_plane(plane), m_labels(labels) {}

    /// Returns the boxes, none where there is no region; then the labels are untouched.
    std::vector<RegionBox> run() {
        findRuns();
        if (m_runCount == 0) return {};
        RunSets sets(m_runCount);
        uniteAll(sets);
        std::vector<RegionBox> boxes = number(sets);
        writeLabels();
        return boxes;
    }

private:
    void findRuns() {
        m_bands.resize(static_cast<std::size_t>((m_plane.height - 1) / kBandRows + 1));
        runTasks(static_cast<int>(m_bands.size()), rowWorkers(m_plane.height), [&](int i) {
            Band& band = m_bands[static_cast<std::size_t>(i)];
            const int begin = i * kBandRows, rows = std::min(m_plane.height - begin, kBandRows);
            for (int y = begin; y < begin + rows; ++y) {
                band.rowStart.push_back(band.runs.size());
                appendRuns(m_plane.row(y), m_plane.width, band.runs);
            }
            band.rowStart.push_back(band.runs.size());
        });
        for (Band& band : m_bands) {
            band.firstRun = m_runCount;
            m_runCount += band.runs.size();
        }
        // Run numbers have 32 bits: enough for every other pixel of the largest picture that is addressable
        // as one int index. Beyond it, as with any picture that does not fit, memory is what runs out.
        if (m_runCount > UINT32_MAX) throw std::bad_alloc();
    }

    /// Calls visit(y, first run, end of runs, number of the first run) for every row, top to bottom.
    template <typename Visit>
    void forEachRow(const Visit& visit) const {
        int y = 0;
        for (const Band& band : m_bands)
            for (std::size_t i = 0; i + 1 < band.rowStart.size(); ++i, ++y)
                visit(y, band.runs.data() + band.rowStart[i], band.runs.data() + band.rowStart[i + 1],
                      static_cast<std::uint32_t>(band.firstRun + band.rowStart[i]));
    }

    void uniteAll(RunSets& sets) const {
        const Run *above = nullptr, *aboveEnd = nullptr;
        std::uint32_t aboveFirst = 0;
        forEachRow([&](int, const Run* row, const Run* rowEnd, std::uint32_t first) {
            uniteRows(above, aboveEnd, aboveFirst, row, rowEnd, first, sets);
            above = row;
            aboveEnd = rowEnd;
            aboveFirst = first;
        });
    }

    /// Numbers the regions by their roots and gives every run its label; widens the boxes.
    std::vector<RegionBox> number(RunSets& sets) {
        std::vector<RegionBox> boxes;
        m_labelOfRun.resize(m_runCount);
        forEachRow([&](int y, const Run* row, const Run* rowEnd, std::uint32_t run) {
            for (const Run* r = row; r < rowEnd; ++r, ++run) {
                // A root stands before the other runs of its region, so its label is known by now.
                const std::uint32_t root = sets.root(run);
                if (root == run) boxes.emplace_back();
                const int label = root == run ? static_cast<int>(boxes.size()) : m_labelOfRun[root];
                m_labelOfRun[run] = label;
                RegionBox& box = boxes[static_cast<std::size_t>(label) - 1];
                box.top = std::min(box.top, y);
                box.bottom = std::max(box.bottom, y);
                box.left = std::min(box.left, r->start);
                box.right = std::max(box.right, r->end - 1);
            }
        });
        return boxes;
    }

    void writeLabels() const {
        runTasks(static_cast<int>(m_bands.size()), rowWorkers(m_plane.height), [&](int i) {
            const Band& band = m_bands[static_cast<std::size_t>(i)];
            const int* label = m_labelOfRun.data() + band.firstRun;
            for (std::size_t y = 0; y + 1 < band.rowStart.size(); ++y) {
                int* const row = m_labels.row(i * kBandRows + static_cast<int>(y));
                int done = 0;
                for (std::size_t r = band.rowStart[y]; r < band.rowStart[y + 1]; ++r, ++label) {
                    std::fill(row + done, row + band.runs[r].start, 0);
                    std::fill(row + band.runs[r].start, row + band.runs[r].end, *label);
                    done = band.runs[r].end;
                }
                std::fill(row + done, row + m_plane.width, 0);
            }
        });
    }

    PlaneView<const Byte> m_plane;
    PlaneView<int> m_labels;
    std::vector<Band> m_bands;
    std::size_t m_runCount = 0;
    std::vector<int> m_labelOfRun;
};

}  // namespace

std::vector<RegionBox> LabelConnectedRuns(PlaneView<const Byte> plane, PlaneView<int> labels) {
    if (!plane.valid() || !labels.valid()) return {};
    return Labeller(plane, labels).run();
}

}  // namespace zellab
