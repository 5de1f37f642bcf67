#pragma once

#include <memory>

#include "zel_effects/zel_records.h"

namespace zellab {

/// A picture that CZelMaskRaster reads or draws into.
struct RasterImage {
    int width = 0, height = 0;
    unsigned char* pixels = nullptr;     // RGBA, the caller's
    const Vector2f* vertices = nullptr;  // corners of the mesh in pixels, the caller's
    std::unique_ptr<unsigned char[]> owned;
};

/// Draws a textured mesh of triangles: how a standard mask of a face is laid over a real face.
class CZelMaskRaster {
public:
    CZelMaskRaster() = default;
    CZelMaskRaster(const CZelMaskRaster&) = delete;
    CZelMaskRaster& operator=(const CZelMaskRaster&) = delete;
    virtual ~CZelMaskRaster() = default;

    /// Draws the triangles in order; each pixel takes all four bytes of the bilinear sample of the texture at
    /// its affine image. Nothing happens before both pictures are set. Left out are triangles with no corner
    /// in the target, without area, or with a corner that is not finite.
    /// @param uv        pairs in 0..1 of the texture's size, one a vertex; beyond it the edge repeats
    /// @param vertices  pixels of the target
    /// @param indices   three vertex numbers a triangle; entries left over at the end are not read
    virtual void DrawTriangles(const float* uv, const Vector2f* vertices, const unsigned short* indices,
                               int indexCount);

    /// The picture drawn into, of width by height RGBA pixels. A null one or a size below 1 takes it away.
    void SetTarget(unsigned char* pixels, int width, int height);
    /// The picture read from, likewise.
    void SetTexture(unsigned char* pixels, int width, int height);

private:
    std::unique_ptr<RasterImage> m_target, m_texture;
    int m_indexCount = 0;
};

}  // namespace zellab
