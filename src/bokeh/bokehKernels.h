#pragma once

#include <cstdint>
#include <vector>

#include "bokeh/kernelStrip.h"

namespace zellab::Bokeh {

/// The kernels of one shape: a square of weights 0..255 for each radius, and with spin for each of the 120
/// records too. The kernel of radius 0 is the single weight 1.
///
/// Rows stand kPitch bytes apart with zeros around them, so that any window of sixteen weights that begins
/// within kReach of the middle column can be loaded, whatever the radius; a row of zeros serves the
/// distances that a radius does not reach.
class KernelSet {
public:
    static constexpr int kReach = 48;  // bytes before and after the middle column that may be read
    static constexpr int kPitch = 2 * kReach + 1;

    /// Every radius 0..30 from frame 0.
    static KernelSet pyramid(const StripView& strip);
    /// Every radius in each of the 120 records. Built on several threads.
    static KernelSet spinPyramid(const StripView& strip);
    /// One radius alone, without and with spin.
    static KernelSet constant(const StripView& strip, int radius);
    static KernelSet spinConstant(const StripView& strip, int radius);

    int records() const { return static_cast<int>(m_rows.size() / kRowsOfRecord); }
    bool has(int radius) const { return radius >= m_smallest && radius <= m_largest; }

    /// The middle of the kernel row `dy` rows above the middle row (below it when negative), |dy| <= 30:
    /// its weight for a target dx pixels right of the scattering pixel is p[dx].
    const Byte* rowTowards(int record, int radius, int dy) const {
        return m_bytes.data() + m_rows[rowIndex(record, radius, dy)];
    }
    /// Offsets of those rows by radius, for one record and distance.
    const std::uint32_t* rowOffsets(int record, int dy) const { return &m_rows[rowIndex(record, 0, dy)]; }
    const Byte* bytes() const { return m_bytes.data(); }

    static constexpr int kRowsOfRadius = 2 * kMaxRadius + 1;
    /// Offsets from a record's rows to the next record's.
    static constexpr std::size_t kRowsOfRecord = std::size_t{kRowsOfRadius} * kRadii;

private:
    KernelSet(const StripView& strip, int records, int smallest, int largest);
    static std::size_t rowIndex(int record, int radius, int dy) {
        return (static_cast<std::size_t>(record) * kRowsOfRadius +
                static_cast<std::size_t>(dy + kMaxRadius)) *
                   kRadii +
               static_cast<std::size_t>(radius);
    }
    std::size_t placeRows(int record, std::size_t next);
    void fillRecord(const StripView& strip, int record, bool turned);

    std::vector<Byte> m_bytes;
    std::vector<std::uint32_t> m_rows;  // by record, distance, radius
    int m_smallest, m_largest;
};

/// The weight of row i, column j of the kernel of odd size n, taken from frame 0 as it stands.
Byte sampleKernel(const StripView& strip, int n, int i, int j);

/// The same from any frame, turned by the angle of which cosine and sine are given.
Byte sampleTurnedKernel(const StripView& strip, int n, int i, int j, int frame, float cosine, float sine);

}  // namespace zellab::Bokeh
