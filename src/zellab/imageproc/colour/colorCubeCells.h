#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// How a cube lies in its picture.
struct CubeShape {
    int steps;        // an axis
    int tilesAcross;  // tiles of steps by steps texels

    constexpr std::ptrdiff_t offset(int red, int green, int blue) const {
        const std::ptrdiff_t side = std::ptrdiff_t{steps} * tilesAcross;
        const std::ptrdiff_t row = std::ptrdiff_t{blue / tilesAcross} * steps + green;
        return 4 * (row * side + std::ptrdiff_t{blue % tilesAcross} * steps + red);
    }
};
inline constexpr CubeShape kCube16{16, 4}, kCube64{64, 8};

/// Where a byte value falls along an axis: a cell and 7 bits of fraction. White is the last step with
/// fraction 0.
struct CubePosition {
    int cell, fraction;
};
inline constexpr int kCubeFractionBits = 7, kCubeFractionOne = 1 << kCubeFractionBits;

constexpr CubePosition cubePosition(int value, int steps) {
    const int position = value * ((steps - 1) << kCubeFractionBits) / 255;
    return {position >> kCubeFractionBits, position & (kCubeFractionOne - 1)};
}

/// A cube of 16 steps as the AVX2 loop wants it: all eight corners of a cell in 32 bytes, and what a byte
/// value means along each axis.
class CubeCells {
public:
    static constexpr int kCellBytes = 32, kCells = 16 * 16 * 16;

    explicit CubeCells(const Byte* cube);

    /// Corners of a cell, less 128. Low half: for this and the next green, the four channels, each as the
    /// pair of this and the next red. High half: the same for the next blue.
    const std::int8_t* corners(const Byte* pixel) const {
        return m_corners.data() + m_offsets[0][pixel[0]] + m_offsets[1][pixel[1]] + m_offsets[2][pixel[2]];
    }
    /// Weights of this (low byte) and the next red (high byte), 128 together.
    std::int16_t redWeights(Byte red) const { return m_redWeights[red]; }
    /// Green's fraction times 256 and blue's times 4, each once for every channel.
    const std::int64_t* greenFraction(Byte green) const { return &m_greenFraction[green]; }
    const std::int64_t* blueFraction(Byte blue) const { return &m_blueFraction[blue]; }

private:
    std::vector<std::int8_t> m_corners;
    std::array<std::uint32_t, 256> m_offsets[3];
    std::array<std::int16_t, 256> m_redWeights;
    std::array<std::int64_t, 256> m_greenFraction, m_blueFraction;
};

/// Looks up the pixels of a row in groups of four; returns how many were done. Needs AVX2.
int cubeRowAvx2(Byte* row, int width, const CubeCells& cells);

}  // namespace zellab
