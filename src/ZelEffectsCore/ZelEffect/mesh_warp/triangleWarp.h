#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "zel_effects/zel_records.h"
#include "zellab/geometry/linearSolve.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Weight tables of a bilinear warp in sixteenths and a table of byte products. Part of the warp's interface;
/// the bicubic warp of this library does not read it.
class TriangleWarpTable {
public:
    static constexpr int kSteps = 16;                   // fractions of a pixel
    static constexpr std::size_t kCornerEntries = 289;  // (kSteps + 1) squared
    static constexpr std::size_t kProductEntries = 257 * 256;

    TriangleWarpTable();

    /// Weight of corner 0 to 3 (here, right, diagonal, below) at (row fraction * 16) | column fraction.
    const std::array<std::int32_t, kCornerEntries>& corner(std::size_t index) const {
        return m_corners[index];
    }
    /// (a * b) >> 8 at (a * 256) | b, a in 0..256, b in 0..255.
    const std::vector<unsigned char>& products() const { return m_products; }

private:
    std::array<std::array<std::int32_t, kCornerEntries>, 4> m_corners{};
    std::vector<unsigned char> m_products;
};

/// Lists the pixels of a triangle, row by row from the left, and where each comes from.
/// @param affine  six floats a b c d e f: the source of (x, y) is (a x + b y + c, d x + e y + f)
/// @param outDst, outSrc  appended to; pixels outside a picture of that size are left out
void RasterizeTriangle(const Vector2f triangle[3], std::vector<Vector2f>& outDst,
                       std::vector<Vector2f>& outSrc, const float* affine, int width, int height);

/// Writes the bicubic sample of `src` at srcPoint to pixel dstPixel (truncated) of `dst`, which has its size.
/// A source outside the picture is moved to its edge, a target outside is left out, alpha is kept.
void SampleBicubicPixel(ConstImageView src, ImageView dst, Vector2f srcPoint, Vector2f dstPixel);

/// Redraws `dst` triangle by triangle, in order: each pixel of a triangle of dstMesh takes the bicubic sample
/// of `src` at its affine image in srcMesh. A triangle whose vertices agree in both meshes is left out, and
/// so is one with no vertex of dstMesh in the picture. `src` must not overlap `dst`.
/// @param triangles  three vertex numbers each; a count below 1 does nothing
void WarpByTriangles(const TriangleWarpTable& table, ConstImageView src, ImageView dst,
                     const Vector2f* srcMesh, const Vector2f* dstMesh, const std::uint16_t* triangles,
                     int triangleCount);

/// The same on one picture, which is source and destination: only the box that the drawn triangles read
/// is copied. Rows are split over workers; the bytes are those of WarpByTriangles on a whole copy.
void warpInPlace(const ImageView& image, const Vector2f* srcMesh, const Vector2f* dstMesh,
                 const std::uint16_t* triangles, int triangleCount);

}  // namespace zellab
