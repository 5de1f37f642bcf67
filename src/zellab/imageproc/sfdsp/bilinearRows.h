#pragma once

#include <vector>

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Where an output sample lies between two source samples.
struct BilinearStep {
    int index, next;  // next is limited to the last sample
    float fraction;   // share of `next`
};

/// The scaler of ScaleBilinearThreaded row by row, for what needs no full-size copy. Its rows may be asked
/// for in any order and on any thread.
class BilinearRows {
public:
    /// The three colours of pictures are scaled; their alpha is 255. What the view shows must outlive the
    /// object. All sizes are at least 1.
    BilinearRows(ConstImageView source, int targetWidth, int targetHeight)
        : BilinearRows(Samples{source.data, source.width, source.height, source.stride, 4}, targetWidth,
                       targetHeight) {}
    BilinearRows(PlaneView<const Byte> source, int targetWidth, int targetHeight)
        : BilinearRows(Samples{source.data, source.width, source.height, source.stride, 1}, targetWidth,
                       targetHeight) {}

    /// Room that scale() works in; each thread has one of its own and keeps it from row to row.
    using Scratch = std::vector<float>;

    /// Writes row y of the target, targetWidth * channels bytes.
    void scale(int y, Scratch& scratch, Byte* out) const;

    /// The source rows between which row y of the target lies.
    const BilinearStep& line(int y) const { return m_lines[static_cast<std::size_t>(y)]; }

private:
    struct Samples {
        const Byte* data;
        int width, height;
        std::ptrdiff_t stride;  // bytes
        int channels;

        const Byte* row(int y) const { return data + y * stride; }
        std::size_t rowBytes() const { return sampleCount(width, 1, channels); }
    };
    BilinearRows(const Samples& source, int targetWidth, int targetHeight);

    Samples m_source;
    std::vector<BilinearStep> m_columns, m_lines;
    std::vector<float> m_fractions;
    std::vector<int> m_indices;
    std::size_t m_inner = 0;  // columns whose right neighbour is the next sample in memory
    bool m_wide, m_enlarges;
};

}  // namespace zellab
