#include "zellab/imageproc/colour/colorCube.h"

#include <algorithm>

#include "platform/simdLevel.h"
#include "zellab/imageproc/colour/colorCubeCells.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

namespace {

/// Offsets along one axis, for every byte value: this step, the next one (itself at the top), and between.
struct CubeAxis {
    struct Entry {
        std::ptrdiff_t here, next;
        int fraction;
    };
    std::array<Entry, 256> entries;

    template <typename Offset>
    CubeAxis(const CubeShape& shape, const Offset& offset) {
        for (int value = 0; value < 256; ++value) {
            const CubePosition p = cubePosition(value, shape.steps);
            entries[static_cast<std::size_t>(value)] = {
                offset(p.cell), offset(std::min(p.cell + 1, shape.steps - 1)), p.fraction};
        }
    }
};

/// A cube in its picture, looked up corner by corner. Works for both shapes.
class PlainCube {
public:
    PlainCube(const Byte* texels, const CubeShape& shape)
        : m_texels(texels),
          m_red(shape, [&](int i) { return shape.offset(i, 0, 0); }),
          m_green(shape, [&](int i) { return shape.offset(0, i, 0); }),
          m_blue(shape, [&](int i) { return shape.offset(0, 0, i); }) {}

    void mapRow(Byte* pixel, int width) const {
        for (int x = 0; x < width; ++x, pixel += 4) mapPixel(pixel);
    }

private:
    void mapPixel(Byte* pixel) const {
        const CubeAxis::Entry &r = m_red.entries[pixel[0]], &g = m_green.entries[pixel[1]],
                              &b = m_blue.entries[pixel[2]];
        const Byte* const corners[4] = {m_texels + g.here + b.here, m_texels + g.here + b.next,
                                        m_texels + g.next + b.here, m_texels + g.next + b.next};
        for (int c = 0; c < 3; ++c) {
            int along[4];  // red interpolated, scaled by 128
            for (int k = 0; k < 4; ++k) {
                const int lower = corners[k][r.here + c], upper = corners[k][r.next + c];
                along[k] = (upper - lower) * r.fraction + lower * kCubeFractionOne;
            }
            const int c0 = (((along[2] - along[0]) * g.fraction + 64) >> 7) + along[0];
            const int c1 = (((along[3] - along[1]) * g.fraction + 64) >> 7) + along[1];
            pixel[c] = clampToByte(((c0 + 64) >> 7) + (((c1 - c0) * b.fraction + 128) >> 14));
        }
    }

    const Byte* m_texels;
    CubeAxis m_red, m_green, m_blue;
};

void applyPlain(ImageView image, const PlainCube& cube) {
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) cube.mapRow(image.row(y), image.width);
    });
}

/// Below this many pixels laying out the cells costs more than it saves.
constexpr std::size_t kWorthCells = 8000;

}  // namespace

CubeCells::CubeCells(const Byte* cube) : m_corners(static_cast<std::size_t>(kCells) * kCellBytes) {
    constexpr int kSteps = 16, kTop = kSteps - 1;
    std::int8_t* cell = m_corners.data();
    for (int blue = 0; blue < kSteps; ++blue)
        for (int green = 0; green < kSteps; ++green)
            for (int red = 0; red < kSteps; ++red)
                for (int corner = 0; corner < 4; ++corner, cell += 8) {
                    const int g = std::min(green + (corner & 1), kTop), b = std::min(blue + corner / 2, kTop);
                    const Byte* const here = cube + kCube16.offset(red, g, b);
                    const Byte* const next = cube + kCube16.offset(std::min(red + 1, kTop), g, b);
                    for (int c = 0; c < 4; ++c) {
                        cell[2 * c] = static_cast<std::int8_t>(here[c] - 128);
                        cell[2 * c + 1] = static_cast<std::int8_t>(next[c] - 128);
                    }
                }
    for (int value = 0; value < 256; ++value) {
        const auto i = static_cast<std::size_t>(value);
        const auto [at, fraction] = cubePosition(value, kSteps);
        const auto bytes = static_cast<std::uint32_t>(at * kCellBytes);
        m_offsets[0][i] = bytes;
        m_offsets[1][i] = bytes * kSteps;
        m_offsets[2][i] = bytes * kSteps * kSteps;
        m_redWeights[i] = static_cast<std::int16_t>((kCubeFractionOne - fraction) | fraction << 8);
        constexpr std::int64_t kEveryChannel = 0x0001000100010001;
        m_greenFraction[i] = kEveryChannel * (fraction << 8);
        m_blueFraction[i] = kEveryChannel * (fraction << 2);
    }
}

void ApplyColorCube(ImageView image, const Byte* cube) {
    if (!image.valid() || !cube) return;
    const PlainCube plain(cube, kCube16);
    if (platform::simdLevel() != platform::SimdLevel::avx2 ||
        sampleCount(image.width, image.height) < kWorthCells) {
        applyPlain(image, plain);
        return;
    }
    const CubeCells cells(cube);
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            const int done = cubeRowAvx2(image.row(y), image.width, cells);
            plain.mapRow(image.row(y) + std::ptrdiff_t{4} * done, image.width - done);
        }
    });
}

void ApplyColorCube64(ImageView image, const Byte* cube) {
    if (image.valid() && cube) applyPlain(image, PlainCube(cube, kCube64));
}

}  // namespace zellab
