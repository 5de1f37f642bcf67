#include <algorithm>
#include <cmath>

#include "beautykernel/skinmaskstatisdetector/skinTables.h"

namespace zelbeauty {

namespace {

/// A slanted ellipse in the plane of Cb and Cr offsets. Skin spreads along falling Cb and rising Cr, as blood
/// and pigment move it (Hsu, Abdel-Mottaleb, Jain: Face detection in color images, 2002), so the long axis
/// leans that way.
struct Blob {
    float centreCb, centreCr;   // offset of the blob from the skin colour
    float longAxis, shortAxis;  // where the weight has fallen to one half
    float slantDeg;             // of the long axis against falling Cb
    float softness;             // width of the border as a share of the axes
};

/// Fitted on synthetic portraits of all skin tones: shaded skin and the rims of a face fall towards grey (Cb
/// up, Cr down), so the blob reaches farther to that side than beyond the colour of lit skin. Wider blobs
/// take in little more skin, and wooden walls and brown hair around dark skin.
constexpr Blob kBlob = {4.5f, 0.5f, 14.6f, 7.2f, 47.0f, 0.42f};
constexpr Blob kBlobAlt = {1.5f, 1.5f, 14.5f, 7.8f, 47.0f, 0.42f};

constexpr int kCentreRow = 35, kCentreColumn = 25;

ChromaTable draw(const Blob& blob) {
    ChromaTable table{};
    const float slant = blob.slantDeg * 3.14159265f / 180.0f;
    const float alongCb = -std::cos(slant), alongCr = std::sin(slant);
    for (int row = 0; row < kChromaRows; ++row)
        for (int column = 0; column < kChromaColumns; ++column) {
            const float cb = static_cast<float>(column - kCentreColumn) - blob.centreCb;
            const float cr = static_cast<float>(row - kCentreRow) - blob.centreCr;
            const float along = (cb * alongCb + cr * alongCr) / blob.longAxis;
            const float across = (cr * alongCb - cb * alongCr) / blob.shortAxis;
            // 1 on the ellipse of half weight; a smooth step from 1 - softness to 1 + softness.
            const float distance = std::sqrt(along * along + across * across);
            const float t =
                std::clamp((1.0f + blob.softness - distance) / (2.0f * blob.softness), 0.0f, 1.0f);
            table[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)] =
                static_cast<unsigned char>(t * t * (3.0f - 2.0f * t) * 255.0f + 0.5f);
        }
    return table;
}

}  // namespace

const ChromaTable& skinChromaTable() {
    static const ChromaTable kTable = draw(kBlob);
    return kTable;
}

const ChromaTable& skinChromaTableAlt() {
    static const ChromaTable kTable = draw(kBlobAlt);
    return kTable;
}

}  // namespace zelbeauty
