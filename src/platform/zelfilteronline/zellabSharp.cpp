#include "platform/zelfilteronline/zellabSharp.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "zellab/imageproc/imageView.h"
#include "zellab/imageproc/parallelRows.h"
#include "zellab/imageproc/pixelMath.h"
#include "zellab/imageproc/stackBlur.h"

namespace zelfilteronline {

namespace {

using zellab::Byte;
using ConstPlane = zellab::PlaneView<const Byte>;

constexpr int kUnit = 256;           // gains and gates are in 1/256
constexpr int kStructureRadius = 2;  // pixels
constexpr int kHeadroom = 2;         // levels beyond the neighbourhood's darkest and brightest sample
constexpr float kFineGain = 3.4f, kStructureGain = 3.4f;  // at an amount of 1

/// Where sharpening sets in and where it is full, by the steepness of the structure and by the height of the
/// detail, in levels. Set on noise of three to four levels: below the first values it does not show, above
/// the second it is texture.
constexpr int kSteepFrom = 6, kSteepFull = 22;
constexpr int kDetailFrom = 9, kDetailFull = 22;

int luma(const Byte* p) {
    return (306 * p[0] + 601 * p[1] + 117 * p[2]) >> 10;
}

/// 0 up to `from`, kUnit from `full` on, straight between.
constexpr int ramp(int value, int from, int full) {
    return std::clamp((value - from) * kUnit / (full - from), 0, kUnit);
}

int gainOf(float amount, float atOne) {
    if (!(amount > 0.0f)) return 0;
    return static_cast<int>(std::min(amount, 1.0f) * atOne * static_cast<float>(kUnit));
}

/// Three neighbouring rows of a plane, those beyond the picture repeated.
struct Rows {
    const Byte *up, *here, *down;
    Rows(ConstPlane plane, int y)
        : up(plane.row(std::max(y - 1, 0))),
          here(plane.row(y)),
          down(plane.row(std::min(y + 1, plane.height - 1))) {}
};

/// Three neighbouring columns, likewise.
struct Columns {
    int left, here, right;
    Columns(int x, int width) : left(std::max(x - 1, 0)), here(x), right(std::min(x + 1, width - 1)) {}
};

/// A 3 by 3 binomial mean.
int softened(const Rows& r, const Columns& c) {
    const auto row = [&](const Byte* p) { return p[c.left] + 2 * p[c.here] + p[c.right]; };
    return (row(r.up) + 2 * row(r.here) + row(r.down) + 8) >> 4;
}

struct Range {
    int lowest, highest;
};

Range rangeAround(const Rows& r, const Columns& c) {
    const auto [low, high] =
        std::minmax({r.up[c.left], r.up[c.here], r.up[c.right], r.here[c.left], r.here[c.here],
                     r.here[c.right], r.down[c.left], r.down[c.here], r.down[c.right]});
    return {low, high};
}

/// How far the brightness of one pixel moves.
class Sharpening {
public:
    Sharpening(ConstPlane luma, ConstPlane structure, float fine, float structureAmount, bool protectFlat)
        : m_luma(luma),
          m_structure(structure),
          m_fineGain(gainOf(fine, kFineGain)),
          m_structureGain(gainOf(structureAmount, kStructureGain)),
          m_protectFlat(protectFlat) {}

    int change(const Rows& lumaRows, const Rows& structureRows, int x) const {
        const Columns columns(x, m_luma.width);
        const int here = lumaRows.here[x], soft = softened(lumaRows, columns), broad = structureRows.here[x];
        const int boost = (here - soft) * m_fineGain + (soft - broad) * m_structureGain;
        const int gate = m_protectFlat ? gateOf(structureRows, columns, here - broad) : kUnit;
        if (gate == 0 || boost == 0) return 0;
        const Range range = rangeAround(lumaRows, columns);
        return std::clamp(here + boost * gate / (kUnit * kUnit), range.lowest - kHeadroom,
                          range.highest + kHeadroom) -
               here;
    }

private:
    static int gateOf(const Rows& structure, const Columns& c, int detail) {
        const int steepness = std::abs(structure.here[c.right] - structure.here[c.left]) +
                              std::abs(structure.down[c.here] - structure.up[c.here]);
        return std::max(ramp(steepness, kSteepFrom, kSteepFull),
                        ramp(std::abs(detail), kDetailFrom, kDetailFull));
    }

    ConstPlane m_luma, m_structure;
    int m_fineGain, m_structureGain;
    bool m_protectFlat;
};

zellab::Plane<Byte> lumaPlane(zellab::ConstImageView image) {
    zellab::Plane<Byte> plane(image.width, image.height);
    zellab::parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            const Byte* p = image.row(y);
            Byte* row = plane.view().row(y);
            for (int x = 0; x < image.width; ++x, p += 4) row[x] = static_cast<Byte>(luma(p));
        }
    });
    return plane;
}

}  // namespace

void CZellabSharp::Run(unsigned char* image, int width, int height, float fine, float structure,
                       bool protectFlat) {
    const zellab::ImageView picture(image, width, height);
    if (!picture.valid()) return;
    const zellab::Plane<Byte> brightness = lumaPlane(picture);
    zellab::Plane<Byte> broad(width, height);
    std::copy_n(brightness.data(), brightness.size(), broad.data());
    zellab::StackBlurGray(broad.data(), width, height, kStructureRadius);

    const Sharpening sharpening(brightness.view(), broad.view(), fine, structure, protectFlat);
    zellab::parallelRows(height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            const Rows lumaRows(brightness.view(), y), structureRows(broad.view(), y);
            Byte* p = picture.row(y);
            for (int x = 0; x < width; ++x, p += 4) {
                const int change = sharpening.change(lumaRows, structureRows, x);
                for (int c = 0; c < 3; ++c) p[c] = zellab::clampToByte(p[c] + change);
            }
        }
    });
}

}  // namespace zelfilteronline
