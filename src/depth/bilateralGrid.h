#pragma once

#include <Eigen/SparseCore>
#include <array>
#include <cstdint>
#include <vector>

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

class KeyTable;

/// A guide picture as the occupied vertices of a grid over position and colour. A pixel belongs to one
/// vertex, the one of its coordinates divided by the cell sizes, truncated.
class BilateralGrid {
public:
    using Matrix = Eigen::SparseMatrix<float, Eigen::RowMajor, int>;

    /// Cell sizes along position (pixels), luma and chroma (levels), each above 0.
    struct Cells {
        float spatial, luma, chroma;
    };

    /// Guide of 4 channels (RGBA; 5 dimensions) or 1 (grey; 3 dimensions), rows tightly packed. Any other
    /// guide, null or empty, gives a grid without pixels.
    BilateralGrid(const Byte* guide, int channels, int height, int width, const Cells& cells);

    int pixels() const { return static_cast<int>(m_vertexOfPixel.size()); }
    int vertices() const { return m_vertices; }
    int dimension() const { return m_dimension; }

    /// Vertex of each pixel; numbered in the order in which rows meet them.
    const std::vector<int>& vertexOfPixel() const { return m_vertexOfPixel; }
    /// The blur: 10 on the diagonal, 1 between vertices one step apart along one dimension. Symmetric.
    const Matrix& blur() const { return m_blur; }

private:
    static constexpr int kMostDimensions = 5;

    void quantiseColour(const Byte* guide, int height, int width, const Cells& cells);
    void quantiseGrey(const Byte* guide, int height, int width, const Cells& cells);
    void number();
    void connect(const KeyTable& table);

    int m_dimension = 0, m_vertices = 0;
    std::array<std::uint64_t, kMostDimensions> m_step{};  // of the key, along each dimension
    std::vector<std::uint64_t> m_keys;                    // of each pixel, then of each vertex
    std::vector<int> m_vertexOfPixel;
    Matrix m_blur;
};

}  // namespace zellab
