#include "ZelEffectsCore/ZelEffect/mesh_warp/triangleWarp.h"

#include <algorithm>

#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/resample/cubicSample.h"
#include "zellab/imageproc/shapes/triangleRaster.h"

namespace zellab {

namespace {

/// One triangle that is drawn.
struct WarpTriangle {
    TriangleRaster raster;
    float affine[9];  // destination to source
};

/// Rows and columns of a picture, inclusive.
struct PixelBox {
    int left, top, right, bottom;
};

bool insidePicture(Vector2f v, int width, int height) {
    return v.x > -0.5f && static_cast<float>(width) > v.x + 0.5f && v.y > -0.5f &&
           static_cast<float>(height) > v.y + 0.5f;
}

std::vector<WarpTriangle> drawnTriangles(int width, int height, const Vector2f* srcMesh,
                                         const Vector2f* dstMesh, const std::uint16_t* triangles, int count) {
    std::vector<WarpTriangle> drawn;
    for (int i = 0; i < count; ++i, triangles += 3) {
        Vector2f from[3], to[3];
        bool moved = false, visible = false;
        for (int k = 0; k < 3; ++k) {
            to[k] = srcMesh[triangles[k]];
            from[k] = dstMesh[triangles[k]];
            moved = moved || to[k].x != from[k].x || to[k].y != from[k].y;
            visible = visible || insidePicture(from[k], width, height);
        }
        if (!moved || !visible) continue;
        WarpTriangle triangle{TriangleRaster(from[0], from[1], from[2], width, height), {}};
        if (triangle.raster.empty()) continue;
        TriangleAffineMap(triangle.affine, &from[0].x, &to[0].x);
        drawn.push_back(triangle);
    }
    return drawn;
}

/// Positions along a row; the single-precision steps of the affine map, (a x + b y) + c.
void sourcePositions(const float* affine, int firstX, int y, int count, float* sourceX, float* sourceY) {
    const float partX = affine[1] * static_cast<float>(y), partY = affine[4] * static_cast<float>(y);
    for (int i = 0; i < count; ++i) {
        const auto x = static_cast<float>(firstX + i);
        sourceX[i] = affine[0] * x + partX + affine[2];
        sourceY[i] = affine[3] * x + partY + affine[5];
    }
}

/// Limits a position to -1..size; not-a-number becomes 0, as it does when it is sampled.
int limited(float position, int size) {
    if (!(position > -1.0f)) return position <= -1.0f ? -1 : 0;
    return position >= static_cast<float>(size) ? size : static_cast<int>(position);
}

/// The pixels that the triangles read. Rounded or not, the map is monotone along rows and columns, so the
/// corners of a triangle's box bound what its pixels read, a triangle without a proper map included.
PixelBox readBox(const std::vector<WarpTriangle>& triangles, int width, int height) {
    constexpr int kTapsBefore = 1, kTapsAfter = 2;
    PixelBox box{width, height, -1, -1};
    for (const WarpTriangle& triangle : triangles)
        for (int y : {triangle.raster.top(), triangle.raster.bottom()})
            for (int x : {triangle.raster.left(), triangle.raster.right()}) {
                float sourceX, sourceY;
                sourcePositions(triangle.affine, x, y, 1, &sourceX, &sourceY);
                const int column = limited(sourceX, width), row = limited(sourceY, height);
                box.left = std::min(box.left, column - kTapsBefore);
                box.top = std::min(box.top, row - kTapsBefore);
                box.right = std::max(box.right, column + kTapsAfter);
                box.bottom = std::max(box.bottom, row + kTapsAfter);
            }
    return {std::clamp(box.left, 0, width - 1), std::clamp(box.top, 0, height - 1),
            std::min(box.right, width - 1), std::min(box.bottom, height - 1)};
}

void drawRow(const WarpTriangle& triangle, int y, const CubicSource& source, Byte* row) {
    constexpr int kRun = 64;
    float sourceX[kRun], sourceY[kRun];
    const PixelSpan span = triangle.raster.span(y);
    for (int x = span.first; x <= span.last; x += kRun) {
        const int count = std::min(span.last - x + 1, kRun);
        sourcePositions(triangle.affine, x, y, count, sourceX, sourceY);
        sampleCubicRun(source, sourceX, sourceY, count, row + std::ptrdiff_t{4} * x);
    }
}

/// Each worker draws its rows of every triangle, in the order of the list, so that a pixel on a shared edge
/// takes its colour from the same triangle on any number of workers.
void drawTriangles(const std::vector<WarpTriangle>& triangles, const CubicSource& source,
                   const ImageView& target) {
    int top = target.height, bottom = -1;
    for (const WarpTriangle& triangle : triangles) {
        top = std::min(top, triangle.raster.top());
        bottom = std::max(bottom, triangle.raster.bottom());
    }
    parallelRows(bottom - top + 1, [&](int begin, int end) {
        for (const WarpTriangle& triangle : triangles) {
            const int first = std::max(triangle.raster.top(), top + begin);
            const int last = std::min(triangle.raster.bottom(), top + end - 1);
            for (int y = first; y <= last; ++y) drawRow(triangle, y, source, target.row(y));
        }
    });
}

}  // namespace

TriangleWarpTable::TriangleWarpTable() : m_products(kProductEntries) {
    // The index joins i * 16 and j by OR, so that entries with j = 16 meet others: the later one stays.
    for (int i = 0; i <= kSteps; ++i)
        for (int j = 0; j <= kSteps; ++j) {
            const auto k = static_cast<std::size_t>((i * kSteps) | j);
            m_corners[0][k] = (kSteps - i) * (kSteps - j) * 256;
            m_corners[1][k] = (kSteps - i) * j * 256;
            m_corners[2][k] = i * j * 256;
            m_corners[3][k] = i * (kSteps - j) * 256;
        }
    for (std::size_t a = 0; a <= 256; ++a)
        for (std::size_t b = 0; b < 256; ++b)
            m_products[(a * 256) | b] = static_cast<unsigned char>((a * b) >> 8);
}

void RasterizeTriangle(const Vector2f triangle[3], std::vector<Vector2f>& outDst,
                       std::vector<Vector2f>& outSrc, const float* affine, int width, int height) {
    const TriangleRaster raster(triangle[0], triangle[1], triangle[2], width, height);
    if (raster.empty()) return;
    for (int y = raster.top(); y <= raster.bottom(); ++y) {
        const PixelSpan span = raster.span(y);
        for (int x = span.first; x <= span.last; ++x) {
            Vector2f from;
            sourcePositions(affine, x, y, 1, &from.x, &from.y);
            outDst.push_back({static_cast<float>(x), static_cast<float>(y)});
            outSrc.push_back(from);
        }
    }
}

void SampleBicubicPixel(ConstImageView src, ImageView dst, Vector2f srcPoint, Vector2f dstPixel) {
    const auto within = [](float v, int size) { return v > -1.0f && v < static_cast<float>(size); };
    if (!within(dstPixel.x, dst.width) || !within(dstPixel.y, dst.height)) return;
    const CubicSource source{src, 0, 0, src.width, src.height};
    sampleCubicRun(source, &srcPoint.x, &srcPoint.y, 1,
                   dst.at(static_cast<int>(dstPixel.x), static_cast<int>(dstPixel.y)));
}

void WarpByTriangles(const TriangleWarpTable&, ConstImageView src, ImageView dst, const Vector2f* srcMesh,
                     const Vector2f* dstMesh, const std::uint16_t* triangles, int triangleCount) {
    const CubicSource source{src, 0, 0, src.width, src.height};
    drawTriangles(drawnTriangles(dst.width, dst.height, srcMesh, dstMesh, triangles, triangleCount), source,
                  dst);
}

void warpInPlace(const ImageView& image, const Vector2f* srcMesh, const Vector2f* dstMesh,
                 const std::uint16_t* triangles, int triangleCount) {
    const auto drawn = drawnTriangles(image.width, image.height, srcMesh, dstMesh, triangles, triangleCount);
    if (drawn.empty()) return;
    const PixelBox box = readBox(drawn, image.width, image.height);
    const int width = box.right - box.left + 1, height = box.bottom - box.top + 1;
    const ImageView window = image.crop(box.left, box.top, width, height);
    RgbaImage copy(width, height);
    parallelRows(height, [&](int begin, int end) {
        copyPixels(window.crop(0, begin, width, end - begin), copy.view().crop(0, begin, width, end - begin));
    });
    drawTriangles(drawn, {copy.view(), box.left, box.top, image.width, image.height}, image);
}

}  // namespace zellab
