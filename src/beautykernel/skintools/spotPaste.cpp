#include "beautykernel/skintools/spotPaste.h"

#include <algorithm>

#include "beautykernel/skintools/spotRepair.h"
#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab {

namespace {

constexpr int kSpotBlurRadius = 2;  // widens the pasted spots, in pixels of the copy

SpotBox spotBoxOf(const FaceData* face) {
    // A box of no size is no box to the repair; its sides may lie too far apart to subtract.
    if (!face || face->left < 0 || face->top < 0 || face->right <= face->left || face->bottom <= face->top)
        return {};
    return {face->left, face->top, face->right - face->left, face->bottom - face->top};
}

}  // namespace

void repairSpots(ImageView image, PlaneView<const Byte> mask, const FaceData* face,
                 PlaneView<Byte> spotMask) {
    CSpotRepair::Run(image, mask, {.face = spotBoxOf(face)}, spotMask);
}

SpotPaste::SpotPaste(ImageView small, PlaneView<const Byte> mask, const FaceData* face, int width, int height)
    : m_width(width), m_spots(small.width, small.height) {
    repairSpots(small, mask, face, m_spots.view());
    StackBlurGray(m_spots.view(), kSpotBlurRadius);

    bool any = false;
    for (int y = 0; y < small.height; ++y) {
        const Byte* row = m_spots.view().row(y);
        m_rowHasSpots.push_back(std::any_of(row, row + small.width, [](Byte s) { return s != 0; }));
        any = any || m_rowHasSpots.back();
    }
    if (!any) return;
    m_where.emplace(m_spots.view(), width, height);
    m_repaired.emplace(small, width, height);
}

void SpotPaste::row(int y, Byte* pixels, Scratch& scratch) const {
    if (!m_where) return;
    const BilinearStep& line = m_where->line(y);
    if (!m_rowHasSpots[static_cast<std::size_t>(line.index)] &&
        !m_rowHasSpots[static_cast<std::size_t>(line.next)])
        return;
    scratch.where.resize(sampleCount(m_width, 1));
    scratch.repaired.resize(sampleCount(m_width, 1, 4));
    m_where->scale(y, scratch.line, scratch.where.data());
    m_repaired->scale(y, scratch.line, scratch.repaired.data());
    const Byte* source = scratch.repaired.data();
    for (const Byte spot : scratch.where) {
        if (spot != 0) std::copy_n(source, 3, pixels);
        source += 4, pixels += 4;
    }
}

void SpotPaste::apply(ImageView image) const {
    if (!m_where) return;
    parallelRows(image.height, [&](int begin, int end) {
        Scratch scratch;
        for (int y = begin; y < end; ++y) row(y, image.row(y), scratch);
    });
}

}  // namespace zellab
