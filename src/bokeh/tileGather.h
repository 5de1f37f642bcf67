#pragma once

#include <cstdint>
#include <vector>

#include "bokeh/bokehKernels.h"
#include "bokeh/lookParameters.h"
#include "bokeh/tileGrid.h"
#include "platform/simdLevel.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab::Bokeh {

/// What the gather reads. All planes have the image's size and outlive the gather.
struct GatherSource {
    ConstImageView image;
    PlaneView<const Byte> radius;           // how far each pixel scatters, 0..30; more counts as 30
    PlaneView<const std::uint16_t> weight;  // of weightPlane
    PlaneView<const Byte> spin;             // record of each pixel; no plane: record 0 everywhere
    const KernelSet* kernels = nullptr;     // holds every radius and record of the planes
    int maximumRadius = 0;                  // how far a pixel looks around itself at most
    LookValues look{};
};

/// Sums of a pixel's neighbourhood: colour times weight, and weight. 64 bits, because a window of 61 by 61
/// full weights passes 32.
struct GatherSums {
    std::uint64_t red = 0, green = 0, blue = 0, weight = 0;
};

/// The pixel that the sums give: their average, its colour lifted if the look is vivid, rounded; alpha 255.
/// Where nothing weighs anything the source pixel stays.
void finishPixel(const GatherSums& sums, const LookValues& look, const Byte* source, Byte* pixel);

/// Two neighbours side by side, as 16-bit lanes: red, red, green, green, blue, blue, weight, weight, each
/// times the highlight weight and split into 12 low bits and the rest, so that 32-bit sums hold a window:
/// 61 * 61 neighbours * 255 * 4095 is below 2^32.
struct NeighbourPair {
    static constexpr int kLowBits = 12;
    std::int16_t low[8], high[8];
};

/// The whole picture in pairs, which the vectorised form reads.
struct NeighbourPairs {
    std::ptrdiff_t across = 0;  // pairs a row; 0: not prepared
    bool wide = false;          // some pair has high bits
    std::vector<NeighbourPair> pairs;
    std::vector<Byte> radii;  // two a pair, none above 30; 0 beyond the picture
};

/// The convolution with a radius a pixel. Each pixel averages the neighbours within its own radius (a square)
/// that reach it with theirs; a neighbour weighs what its kernel holds at the pixel's place times its
/// highlight weight. The sums are whole numbers, so every form gives the same bits.
class TileGather {
public:
    /// `workers` threads prepare and gather rows.
    TileGather(const GatherSource& source, platform::SimdLevel level, int workers);

    /// Computes the tile into `target`, an image of its size.
    void gather(const Tile& tile, const ImageView& target) const;

private:
    void preparePairs();

    GatherSource m_source;
    int m_workers;
    NeighbourPairs m_pairs;
};

/// Row `y` of the tile, vectorised: groups of eight pixels share one walk over the neighbours.
void gatherRowAvx2(const GatherSource& source, const NeighbourPairs& pairs, const Tile& tile, int y,
                   Byte* target);

/// The radius that counts for a byte of the plane: kernels end at 30.
constexpr int countedRadius(Byte radius) {
    return radius < kMaxRadius ? radius : kMaxRadius;
}

}  // namespace zellab::Bokeh
