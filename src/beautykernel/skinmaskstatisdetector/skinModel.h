#pragma once

#include <array>

#include "zellab/imageproc/core/ownedImage.h"

namespace zelbeauty {

/// The colour that the model is built around and the range of brightness that is surely skin.
struct SkinStatistics {
    int cb = 0, cr = 0;
    int low = 0, high = 0;
    bool fromFace = false;  // measured on a face, not on the whole picture
};

/// Weight by brightness and weight by chroma.
class SkinModel {
public:
    SkinModel(const SkinStatistics& statistics, bool altTable);

    /// Weight of one pixel as skin.
    unsigned char weight(int y, int cb, int cr) const {
        if (y < m_edgeLow) return 0;
        const int chroma = chromaWeight(cb, cr);
        if (y >= m_low && y <= m_high) return static_cast<unsigned char>(chroma);
        return static_cast<unsigned char>((chroma * m_luma[static_cast<std::size_t>(y)]) >> 8);
    }

    /// Whether a pixel is surely skin: its brightness in the range and its chroma near the middle.
    bool isSure(int y, int cb, int cr) const {
        return y >= m_low && y <= m_high && chromaWeight(cb, cr) >= 230;
    }

private:
    int chromaWeight(int cb, int cr) const { return m_chroma.data()[cr * kSide + cb]; }

    static constexpr int kSide = 256;

    int m_low, m_high, m_edgeLow;
    std::array<unsigned char, kSide> m_luma{};
    zellab::Plane<zellab::Byte> m_chroma;  // kSide by kSide: column Cb, row Cr
};

}  // namespace zelbeauty
