#include "zellab/imageproc/shapes/maskRaster.h"

#include <algorithm>
#include <cmath>

#include "zellab/geometry/linearSolve.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/shapes/triangleRaster.h"

namespace zellab {

namespace {

struct Corner {
    Vector2f target, texture;  // pixels
};

bool isFinite(const Corner& c) {
    return std::isfinite(c.target.x) && std::isfinite(c.target.y) && std::isfinite(c.texture.x) &&
           std::isfinite(c.texture.y);
}

bool liesInside(Vector2f p, const ImageView& picture) {
    return p.x > -0.5f && p.x + 0.5f < static_cast<float>(picture.width) && p.y > -0.5f &&
           p.y + 0.5f < static_cast<float>(picture.height);
}

bool isCollinear(const Corner* c) {
    const Vector2f a = c[0].target, b = c[1].target, d = c[2].target;
    return (a.x - b.x) * (a.y - d.y) == (a.x - d.x) * (a.y - b.y);
}

/// A position on one axis: the sample at or before it, the next one, and the share of the latter. NaN, which
/// overflowing coefficients give, reads the first sample.
struct Tap {
    int here, next;
    float share;
    Tap(float position, int size) {
        const auto last = static_cast<float>(size - 1);
        const float at = position > 0.0f ? std::min(position, last) : 0.0f;
        here = static_cast<int>(at);
        next = std::min(here + 1, size - 1);
        share = at - static_cast<float>(here);
    }
};

void sampleBilinear(ConstImageView texture, float x, float y, Byte* out) {
    const Tap column(x, texture.width), row(y, texture.height);
    const float fx = column.share, fy = row.share;
    const Byte *upper = texture.row(row.here), *lower = texture.row(row.next);
    const Byte *a = upper + std::ptrdiff_t{4} * column.here, *b = lower + std::ptrdiff_t{4} * column.here,
               *c = lower + std::ptrdiff_t{4} * column.next, *d = upper + std::ptrdiff_t{4} * column.next;
    for (int k = 0; k < 4; ++k)
        out[k] = static_cast<Byte>(static_cast<float>(a[k]) * ((1.0f - fx) * (1.0f - fy)) +
                                   static_cast<float>(b[k]) * ((1.0f - fx) * fy) +
                                   static_cast<float>(c[k]) * (fx * fy) +
                                   static_cast<float>(d[k]) * (fx * (1.0f - fy)));
}

void drawTriangle(const Corner* c, ImageView target, ConstImageView texture) {
    float from[6], to[6], affine[9];
    for (int k = 0; k < 3; ++k) {
        from[2 * k] = c[k].target.x, from[2 * k + 1] = c[k].target.y;
        to[2 * k] = c[k].texture.x, to[2 * k + 1] = c[k].texture.y;
    }
    if (!TriangleAffineMap(affine, from, to)) return;
    const TriangleRaster raster(c[0].target, c[1].target, c[2].target, target.width, target.height);
    if (raster.empty()) return;
    parallelRows(raster.bottom() - raster.top() + 1, [&](int begin, int end) {
        for (int y = raster.top() + begin; y < raster.top() + end; ++y) {
            const PixelSpan span = raster.span(y);
            const auto fy = static_cast<float>(y);
            for (int x = span.first; x <= span.last; ++x) {
                const auto fx = static_cast<float>(x);
                sampleBilinear(texture, affine[0] * fx + affine[1] * fy + affine[2],
                               affine[3] * fx + affine[4] * fy + affine[5], target.at(x, y));
            }
        }
    });
}

}  // namespace

void CZelMaskRaster::DrawTriangles(const float* uv, const Vector2f* vertices, const unsigned short* indices,
                                   int indexCount) {
    if (!m_target.valid() || !m_texture.valid() || !uv || !vertices || !indices) return;
    for (int i = 0; i <= indexCount - 3; i += 3) {
        Corner corners[3];
        for (int k = 0; k < 3; ++k) {
            const std::size_t v = indices[i + k];
            corners[k] = {vertices[v],
                          {uv[2 * v] * static_cast<float>(m_texture.width),
                           uv[2 * v + 1] * static_cast<float>(m_texture.height)}};
        }
        const auto inTarget = [&](const Corner& c) { return liesInside(c.target, m_target); };
        if (std::any_of(corners, corners + 3, inTarget) && std::all_of(corners, corners + 3, isFinite) &&
            !isCollinear(corners))
            drawTriangle(corners, m_target, m_texture);
    }
}

}  // namespace zellab
