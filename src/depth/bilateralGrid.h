#pragma once

#include <Eigen/SparseCore>
#include <array>
#include <cstdint>
#include <vector>

#include "depth/pixelsView.h"

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

    /// A guide in colour has 5 dimensions, a grey one 3; one that is not valid gives a grid without pixels.
    BilateralGrid(const PixelsView& guide, const Cells& cells);

    int pixels() const { return static_cast<int>(m_vertexOfPixel.size()); }
    int vertices() const { return m_vertices; }
    int dimension() const { return m_dimension; }

    /// Vertex of each pixel; numbered in the order in which rows meet them.
    const std::vector<int>& vertexOfPixel() const { return m_vertexOfPixel; }
    /// The blur: 10 on the diagonal, 1 between vertices one step apart along one dimension. Symmetric.
    const Matrix& blur() const { return m_blur; }

private:
    static constexpr int kMostDimensions = 5;

    void quantiseColour(const PixelsView& guide, const Cells& cells);
    void quantiseGrey(const PixelsView& guide, const Cells& cells);
    void number();
    void connect(const KeyTable& table);

    int m_dimension = 0, m_vertices = 0;
    std::array<std::uint64_t, kMostDimensions> m_step{};  // of the key, along each dimension
    std::vector<std::uint64_t> m_keys;                    // of each pixel, then of each vertex
    std::vector<int> m_vertexOfPixel;
    Matrix m_blur;
};

}  // namespace zellab
