#pragma once

#include <vector>

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Where an output sample lies between two source samples.
struct BilinearStep {
    int index, next;  // next is limited to the last sample
    float fraction;   // share of `next`
};

/// Sizes in pixels, all at least 1.
struct BilinearSizes {
    int sourceWidth, sourceHeight, targetWidth, targetHeight;
};

/// The scaler of ScaleBilinearThreaded row by row, for what needs no full-size copy. Its rows may be asked
/// for in any order and on any thread.
class BilinearRows {
public:
    /// @param source    tightly packed; must outlive the object
    /// @param channels  1, or 4: the three colours are scaled and alpha is 255
    BilinearRows(const BilinearSizes& sizes, const Byte* source, int channels);

    /// Room that scale() works in; each thread has one of its own and keeps it from row to row.
    using Scratch = std::vector<float>;

    /// Writes row y of the target, targetWidth * channels bytes.
    void scale(int y, Scratch& scratch, Byte* out) const;

    /// The source rows between which row y of the target lies.
    const BilinearStep& line(int y) const { return m_lines[static_cast<std::size_t>(y)]; }

private:
    const Byte* m_source;
    std::vector<BilinearStep> m_columns, m_lines;
    std::vector<float> m_fractions;
    std::vector<int> m_indices;
    std::size_t m_inner = 0;  // columns whose right neighbour is the next sample in memory
    std::size_t m_sourceRowBytes;
    int m_channels;
    bool m_wide, m_enlarges;
};

}  // namespace zellab
