#pragma once

#include <array>
#include <memory>
#include <span>

#include "zellab/imageproc/tone/toneTables.h"

namespace zellab {

struct CurvePoint {
    int x, y;
};

/// Tone curves through points: a uniform cubic B-spline drawn as Bezier segments, sampled to tables.
/// Holds five tables (channels 0 to 4), each the identity at first; pipelines use channel 4, "all".
class SFCurve {
public:
    static constexpr int kChannels = 5, kAllChannel = 4;

    SFCurve();
    virtual ~SFCurve();
    SFCurve(const SFCurve&) = delete;
    SFCurve& operator=(const SFCurve&) = delete;

    /// Samples the curve through the points into a table.
    /// @param points  ascending in x. The segments are written from entry 0 on whatever the first x is, so a
    ///                curve must start at x 0.
    /// Nothing happens without a point; what would fall outside the table is left out.
    static void BuildTable(std::span<const CurvePoint> points, ByteTable& table);

    /// BuildTable into the table of a channel; a channel outside 0..4 is ignored.
    void BuildChannel(std::span<const CurvePoint> points, int channel);

    /// The table of a channel in 0..4.
    const ByteTable& Table(int channel) const { return *m_tables[static_cast<std::size_t>(channel)]; }

private:
    std::array<std::unique_ptr<ByteTable>, kChannels> m_tables;
};

/// The table of the curve through (0, 0), (x, y) and (255, 255).
void CurveTableThreePoints(ByteTable& table, int x, int y);

/// The same under the name that the pipelines use.
void ApplyCurveThreePoints(ByteTable& table, int x, int y);

}  // namespace zellab
