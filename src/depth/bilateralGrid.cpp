#include "depth/bilateralGrid.h"

#include <libyuv/convert.h>

#include <numeric>

#include "depth/keyTable.h"

namespace zellab {

namespace {

constexpr float kSelfWeight = 10.0f;
constexpr int kLevels = 256;  // of luma and chroma

/// The guide as luma in full size and chroma in half.
struct Yuv {
    std::vector<Byte> y, u, v;
    int chromaWidth = 0;
};

Yuv yuvOf(const PixelsView& rgba) {
    const int width = rgba.width, height = rgba.height;
    // Rounded up: a last odd column and row have chroma of their own, which the reader at (x / 2, y / 2)
    // reaches.
    Yuv yuv;
    yuv.chromaWidth = (width + 1) / 2;
    const int chromaHeight = (height + 1) / 2;
    yuv.y.resize(sampleCount(width, height));
    yuv.u.resize(sampleCount(yuv.chromaWidth, chromaHeight));
    yuv.v.resize(yuv.u.size());
    // Red first in memory is "ABGR" in the converter's words, which names from the highest byte.
    libyuv::ABGRToI420(rgba.data, 4 * width, yuv.y.data(), width, yuv.u.data(), yuv.chromaWidth, yuv.v.data(),
                       yuv.chromaWidth, width, height);
    return yuv;
}

/// The cell of each coordinate from 0 to count - 1.
std::vector<std::uint64_t> cellsOf(int count, float size) {
    std::vector<std::uint64_t> cells(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        cells[static_cast<std::size_t>(i)] = static_cast<std::uint64_t>(static_cast<float>(i) / size);
    return cells;
}

/// Multiplies the cells by the key's step along their dimension and gives the step of the next dimension. A
/// digit has one value more than there are cells: a step over either end of a row of cells then meets a key
/// that no pixel has, never the next row.
std::uint64_t scaleToStep(std::vector<std::uint64_t>& cells, std::uint64_t step) {
    const std::uint64_t digits = cells.back() + 2;
    for (std::uint64_t& cell : cells) cell *= step;
    return step * digits;
}

}  // namespace

BilateralGrid::BilateralGrid(const PixelsView& guide, const Cells& cells) {
    // Sides as large as the scalers take; the five digits of a key then fit its 64 bits.
    constexpr int kLongestSide = 32768;
    if (!guide.valid() || guide.width > kLongestSide || guide.height > kLongestSide) return;
    if (guide.channels == 1)
        quantiseGrey(guide, cells);
    else
        quantiseColour(guide, cells);
    number();
}

void BilateralGrid::quantiseColour(const PixelsView& guide, const Cells& cells) {
    m_dimension = 5;
    const int width = guide.width, height = guide.height;
    const Yuv yuv = yuvOf(guide);
    auto column = cellsOf(width, cells.spatial), row = cellsOf(height, cells.spatial);
    auto luma = cellsOf(kLevels, cells.luma), u = cellsOf(kLevels, cells.chroma), v = u;
    m_step[0] = 1;
    m_step[1] = scaleToStep(column, m_step[0]);
    m_step[2] = scaleToStep(row, m_step[1]);
    m_step[3] = scaleToStep(luma, m_step[2]);
    m_step[4] = scaleToStep(v, m_step[3]);
    scaleToStep(u, m_step[4]);
    m_keys.resize(sampleCount(width, height));
    std::size_t i = 0;
    for (int y = 0; y < height; ++y) {
        const std::size_t chromaRow =
            static_cast<std::size_t>(y / 2) * static_cast<std::size_t>(yuv.chromaWidth);
        const std::uint64_t rowKey = row[static_cast<std::size_t>(y)];
        for (int x = 0; x < width; ++x, ++i) {
            const std::size_t chroma = chromaRow + static_cast<std::size_t>(x / 2);
            m_keys[i] = column[static_cast<std::size_t>(x)] + rowKey + luma[yuv.y[i]] + v[yuv.v[chroma]] +
                        u[yuv.u[chroma]];
        }
    }
}

void BilateralGrid::quantiseGrey(const PixelsView& guide, const Cells& cells) {
    m_dimension = 3;
    const int width = guide.width, height = guide.height;
    auto column = cellsOf(width, cells.spatial), row = cellsOf(height, cells.spatial);
    auto luma = cellsOf(kLevels, cells.luma);
    m_step[0] = 1;
    m_step[1] = scaleToStep(column, m_step[0]);
    m_step[2] = scaleToStep(row, m_step[1]);
    scaleToStep(luma, m_step[2]);
    m_keys.resize(sampleCount(width, height));
    std::size_t i = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x, ++i)
            m_keys[i] =
                column[static_cast<std::size_t>(x)] + row[static_cast<std::size_t>(y)] + luma[guide.data[i]];
}

/// Gives every distinct key a vertex and joins the vertices.
void BilateralGrid::number() {
    KeyTable table;
    m_vertexOfPixel.resize(m_keys.size());
    std::uint64_t lastKey = ~m_keys[0];
    int last = 0;
    for (std::size_t i = 0; i < m_keys.size(); ++i) {
        if (m_keys[i] != lastKey) {  // runs of one key are common along a row
            lastKey = m_keys[i];
            last = table.numberOf(lastKey);
        }
        m_vertexOfPixel[i] = last;
    }
    m_keys = table.keys();
    m_vertices = static_cast<int>(m_keys.size());
    connect(table);
}

/// The blur as rows of vertices in rising order.
void BilateralGrid::connect(const KeyTable& table) {
    // Of each vertex: itself, then the next and the previous one along each dimension, -1 where there is
    // none. The previous one is a bond of that one's "next", so only half of them are looked up.
    const auto slots = static_cast<std::size_t>(2 * m_dimension + 1);
    std::vector<int> bonds(m_keys.size() * slots, -1);
    std::vector<int> begin(m_keys.size() + 1, 0);
    for (std::size_t i = 0; i < m_keys.size(); ++i) {
        bonds[i * slots] = static_cast<int>(i);
        ++begin[i + 1];
        for (std::size_t d = 0; d < static_cast<std::size_t>(m_dimension); ++d) {
            const int other = table.find(m_keys[i] + m_step[d]);
            if (other < 0) continue;
            const auto o = static_cast<std::size_t>(other);
            bonds[i * slots + 2 * d + 1] = other;
            bonds[o * slots + 2 * d + 2] = static_cast<int>(i);
            ++begin[i + 1];
            ++begin[o + 1];
        }
    }
    std::partial_sum(begin.begin(), begin.end(), begin.begin());
    std::vector<int> columns(static_cast<std::size_t>(begin.back())), end = begin;
    std::vector<float> weights(columns.size());
    // Vertices enter the rows of their neighbours in order, so every row comes out sorted.
    for (std::size_t i = 0; i < m_keys.size(); ++i)
        for (std::size_t s = 0; s < slots; ++s) {
            const int row = bonds[i * slots + s];
            if (row < 0) continue;
            const auto at = static_cast<std::size_t>(end[static_cast<std::size_t>(row)]++);
            columns[at] = static_cast<int>(i);
            weights[at] = s == 0 ? kSelfWeight : 1.0f;
        }
    m_blur = Eigen::Map<const Matrix>(m_vertices, m_vertices, begin.back(), begin.data(), columns.data(),
                                      weights.data());
}

}  // namespace zellab
