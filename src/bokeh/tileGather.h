#pragma once

#include <cstdint>
#include <vector>

#include "bokeh/bokehKernels.h"
#include "bokeh/lookParameters.h"
#include "bokeh/tileGrid.h"
#include "platform/simdLevel.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"

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

/// Two neighbours side by side, as 16-bit lanes: red, red, green, green, blue, blue, weight, weight. Colours count
/// from their middle and are multiplied by the highlight weight; what 16 bits do not hold is split into kLowBits
/// and the rest.
struct NeighbourPair {
    static constexpr int kLowBits = 12;
    static constexpr int kMiddle = 128;         // of the levels
    static constexpr int kLargestWeight = 256;  // up to which products fit 16 bits
    std::int16_t values[8];
};

/// The whole picture in pairs, which the vectorised form reads.
struct NeighbourPairs {
    /// What a pair is, beside the radius of both: their radii or kernels differ; some value has high bits.
    static constexpr Byte kMixed = 64, kWide = 128;

    std::ptrdiff_t across = 0;             // pairs a row; 0: not prepared
    int largestLow = 0;                    // the largest size of a value in `low`
    std::vector<NeighbourPair> low, high;  // high: none where no pair is wide
    std::vector<Byte> kind;
    std::vector<std::uint16_t>
        runEnd;                        // behind the last pair in this one's row that follows it with its kind
    Plane<Byte> largestRadius;         // around each block of pixels, as far as any kernel reaches
    static constexpr int kBlock = 16;  // pixels
};

/// The kernels without spin as the vectorised form reads them: for each radius and distance of rows, the weights
/// that two neighbours give to pixels side by side, and how far along the row there are any.
class KernelPairs {
public:
    static constexpr int kReach = KernelSet::kReach;

    KernelPairs() = default;
    KernelPairs(const KernelSet& kernels, const Byte* radii, std::size_t count);

    /// The weights for the pixel of the first neighbour; those for the pixel i right of it stand at 2 * i.
    const std::int16_t* row(int radius, int dy) const {
        return m_weights.data() + m_rows[index(radius, dy)] + 2 * kReach;
    }
    /// The farthest distance with a weight, -1 for none; of one radius, and of all up to it.
    const signed char* support(int dy) const { return &m_support[index(0, dy)]; }
    int supportUpTo(int radius, int dy) const { return m_widest[index(radius, dy)]; }

private:
    static std::size_t index(int radius, int dy) {
        return static_cast<std::size_t>(dy + kMaxRadius) * kRadii + static_cast<std::size_t>(radius);
    }
    std::vector<std::int16_t> m_weights;
    std::vector<std::uint32_t> m_rows;
    std::vector<signed char> m_support, m_widest;
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
    void findLargestRadii();

    GatherSource m_source;
    int m_workers;
    NeighbourPairs m_pairs;
    KernelPairs m_kernels;
};

/// Row `y` of the tile, vectorised: groups of sixteen pixels share one walk over the neighbours.
void gatherRowAvx2(const GatherSource& source, const NeighbourPairs& pairs, const KernelPairs& kernels,
                   const Tile& tile, int y, Byte* target);

/// The radius that counts for a byte of the plane: kernels end at 30.
constexpr int countedRadius(Byte radius) {
    return radius < kMaxRadius ? radius : kMaxRadius;
}

}  // namespace zellab::Bokeh
