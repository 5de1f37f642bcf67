#include "bokeh/bokehKernels.h"

#include <cmath>

#include "frame/processorCount.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab::Bokeh {

namespace {

/// Position in the used share of a frame, -0.34375..0.34375, of sample `index` of n.
float frameOffset(int index, int n) {
    return (static_cast<float>(index) / static_cast<float>(n - 1) - 0.5f) * kUsedShare;
}

/// Strip pixels. Many places are whole numbers but for the rounding of a float, which may leave them just
/// below: this picks their own pixel, here and in the shaders.
constexpr float kNudge = 1.0f / 1024.0f;

/// Never beyond the frame: a corner of the used share lies 0.486 of a side from the middle, however turned.
Byte stripByte(const StripView& strip, float row, float column) {
    return strip.row(
        static_cast<int>(std::floor(row + kNudge)))[static_cast<int>(std::floor(column + kNudge))];
}

}  // namespace

Byte sampleKernel(const StripView& strip, int n, int i, int j) {
    if (n <= 1) return 1;
    const float u = frameOffset(i, n), v = frameOffset(j, n);
    return stripByte(strip, (u + 0.5f) * kStripHeight, (v + 0.5f) / kFrames * kStripWidth);
}

Byte sampleTurnedKernel(const StripView& strip, int n, int i, int j, int frame, float cosine, float sine) {
    if (n <= 1) return 1;
    const float u = frameOffset(i, n), v = frameOffset(j, n);
    const float column = (v * cosine - u * sine + 0.5f + static_cast<float>(frame)) / kFrames * kStripWidth;
    return stripByte(strip, (v * sine + u * cosine + 0.5f) * kStripHeight, column);
}

KernelSet::KernelSet(const StripView& strip, int records, int smallest, int largest)
    : m_rows(static_cast<std::size_t>(records) * kRowsOfRadius * kRadii, kReach),
      m_smallest(smallest),
      m_largest(largest) {
    const bool turned = records > 1;
    std::size_t bytes = kPitch;  // the row of zeros that every unplaced row stands for
    for (int record = 0; record < records; ++record) bytes = placeRows(record, bytes);
    m_bytes.resize(bytes);
    runTasks(records, ProcessorCountForRows(records), [&](int record) { fillRecord(strip, record, turned); });
}

std::size_t KernelSet::placeRows(int record, std::size_t next) {
    for (int radius = m_smallest; radius <= m_largest; ++radius)
        for (int dy = -radius; dy <= radius; ++dy, next += kPitch)
            m_rows[rowIndex(record, radius, dy)] = static_cast<std::uint32_t>(next + kReach);
    return next;
}

void KernelSet::fillRecord(const StripView& strip, int record, bool turned) {
    const float angle = rotationAngle(record / kFrames);
    const float cosine = std::cos(angle), sine = std::sin(angle);
    for (int radius = m_smallest; radius <= m_largest; ++radius)
        for (int dy = -radius; dy <= radius; ++dy) {
            const int n = 2 * radius + 1, i = radius - dy;
            Byte* const middle = m_bytes.data() + m_rows[rowIndex(record, radius, dy)];
            for (int j = 0; j < n; ++j)
                middle[j - radius] = turned
                                         ? sampleTurnedKernel(strip, n, i, j, record % kFrames, cosine, sine)
                                         : sampleKernel(strip, n, i, j);
        }
}

KernelSet KernelSet::pyramid(const StripView& strip) {
    return {strip, 1, 0, kMaxRadius};
}
KernelSet KernelSet::spinPyramid(const StripView& strip) {
    return {strip, kRecords, 0, kMaxRadius};
}
KernelSet KernelSet::constant(const StripView& strip, int radius) {
    return {strip, 1, radius, radius};
}
KernelSet KernelSet::spinConstant(const StripView& strip, int radius) {
    return {strip, kRecords, radius, radius};
}

}  // namespace zellab::Bokeh
