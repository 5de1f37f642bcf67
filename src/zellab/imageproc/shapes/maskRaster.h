#pragma once

#include "zel_effects/zel_records.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

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

    /// The picture drawn into; one that is not valid takes it away.
    void SetTarget(ImageView picture) { m_target = picture; }
    /// The picture read from, likewise.
    void SetTexture(ConstImageView picture) { m_texture = picture; }

private:
    ImageView m_target;
    ConstImageView m_texture;
};

}  // namespace zellab
