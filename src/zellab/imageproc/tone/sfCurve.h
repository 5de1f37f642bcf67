#pragma once

#include <cstdlib>
#include <memory>

namespace zellab {

/// Tone curves through points: a uniform cubic B-spline drawn as Bezier segments, sampled to 256 bytes.
/// Holds five tables (channels 0 to 4), each the identity at first; pipelines use channel 4, "all".
class SFCurve {
public:
    static constexpr int kChannels = 5, kAllChannel = 4;

    SFCurve();
    virtual ~SFCurve();
    SFCurve(const SFCurve&) = delete;
    SFCurve& operator=(const SFCurve&) = delete;

    /// Samples the curve through the points into a table of 256 bytes.
    /// @param points  count pairs x, y, ascending in x. The segments are written from entry 0 on whatever
    ///                the first x is, so a curve must start at x 0.
    /// Nothing happens for null pointers or a count below 1; what would fall outside the table is left out.
    static void BuildTable(const int* points, int count, unsigned char* table);

    /// BuildTable into the table of a channel; a channel outside 0..4 is ignored.
    void BuildChannel(const int* points, int count, int channel);

    /// The 256 bytes of a channel in 0..4.
    const unsigned char* Table(int channel) const { return m_tables[channel].get(); }

private:
    struct Free {
        void operator()(unsigned char* table) const { std::free(table); }
    };
    std::unique_ptr<unsigned char, Free> m_tables[kChannels];
};

/// The table of the curve through (0, 0), (x, y) and (255, 255).
void CurveTableThreePoints(unsigned char* table, int x, int y);

/// The same under the name that the pipelines use.
void ApplyCurveThreePoints(unsigned char* table, int x, int y);

}  // namespace zellab
