#include "beautykernel/skintools/spotPatch.h"

#include <array>

#include "beautykernel/skintools/spotTables.h"
#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

namespace {

constexpr int kLargestSide = 2 * kLargestSpotRadius + 1;
constexpr int kMostUnknowns = kLargestSide * kLargestSide;

int textureValue(int radius, int channel, int column, int row) {
    if (radius == 0) return kSpotTexture0;
    // NOLINTNEXTLINE(clang-analyzer-core.uninitialized.UndefReturn): column and row stay below 2 * radius + 1
    if (radius == 1) return kSpotTexture1[column][row];
    return row == kLargestSide - 1 ? kSpotTexture2LastRow[channel][column] : kSpotTexture2[column][row];
}

/// The equations of one channel: unknown column * side + row, the right side in the last place of a line.
class SpotEquations {
public:
    SpotEquations(ConstImageView image, int left, int top, int radius, int channel) : m_side(2 * radius + 1) {
        for (int column = 0; column < m_side; ++column)
            for (int row = 0; row < m_side; ++row) {
                auto& line = m_lines[unknown(column, row)];
                line[unknown(column, row)] = 4.0f;
                int rightSide = textureValue(radius, channel, column, row);
                for (const auto& [dx, dy] : kSteps) {
                    const int c = column + dx, r = row + dy;
                    if (c >= 0 && r >= 0 && c < m_side && r < m_side) {
                        line[unknown(c, r)] = -1.0f;
                    } else {
                        rightSide += image.at(left + c, top + r)[channel];
                    }
                }
                line[kMostUnknowns] = static_cast<float>(rightSide);
            }
    }

    /// Gaussian elimination in single precision. The matrix is diagonally dominant: no pivot comes near zero.
    void solve() {
        const std::size_t count = static_cast<std::size_t>(m_side) * static_cast<std::size_t>(m_side);
        for (std::size_t k = 0; k < count; ++k)
            for (std::size_t r = k + 1; r < count; ++r) {
                const float factor = m_lines[r][k] / m_lines[k][k];
                if (factor == 0.0f) continue;
                for (std::size_t c = k; c < count; ++c) m_lines[r][c] -= factor * m_lines[k][c];
                m_lines[r][kMostUnknowns] -= factor * m_lines[k][kMostUnknowns];
            }
        for (std::size_t k = count; k-- > 0;) {
            float value = m_lines[k][kMostUnknowns];
            for (std::size_t c = k + 1; c < count; ++c) value -= m_lines[k][c] * m_lines[c][kMostUnknowns];
            m_lines[k][kMostUnknowns] = value / m_lines[k][k];
        }
    }

    float solution(int column, int row) const { return m_lines[unknown(column, row)][kMostUnknowns]; }

private:
    static constexpr std::array<std::array<int, 2>, 4> kSteps = {{{-1, 0}, {1, 0}, {0, -1}, {0, 1}}};
    std::size_t unknown(int column, int row) const { return static_cast<std::size_t>(column * m_side + row); }

    int m_side;
    std::array<std::array<float, kMostUnknowns + 1>, kMostUnknowns> m_lines{};
};

}  // namespace

void repaintSpot(ImageView image, int x, int y, int radius) {
    const int left = x - radius, top = y - radius, side = 2 * radius + 1;
    for (int channel = 0; channel < 3; ++channel) {
        SpotEquations equations(image, left, top, radius, channel);
        equations.solve();
        for (int column = 0; column < side; ++column)
            for (int row = 0; row < side; ++row)
                image.at(left + column, top + row)[channel] = truncateToByte(equations.solution(column, row));
    }
}

}  // namespace zellab
