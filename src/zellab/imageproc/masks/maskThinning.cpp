#include <array>
#include <limits>
#include <vector>

#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/masks/maskMorphology.h"

namespace zellab {

namespace {

// Flags of a pixel of the working plane.
constexpr Byte kSet = 1;     // belongs to the mask
constexpr Byte kQueued = 2;  // to be looked at in this round
constexpr Byte kNext = 4;    // to be looked at in the next round

/// Which of the two subpasses of a round may remove a pixel, by its eight neighbours: bit 0 north, then
/// clockwise. Guo and Hall, "Parallel thinning with two-subiteration algorithms", 1989: the pixel ties one
/// run of neighbours only, is no line's end, and lies on the side that the subpass peels. It keeps a last
/// pixel of small blobs, which the better known rule of Zhang and Suen erases.
constexpr int removableIn(int neighbours) {
    const auto p = [&](int i) { return (neighbours >> (i % 8) & 1) != 0; };
    int runs = 0, pairsA = 0, pairsB = 0;
    for (int i = 0; i < 8; i += 2) {
        runs += !p(i) && (p(i + 1) || p(i + 2));
        pairsA += p(i + 7) || p(i);
        pairsB += p(i) || p(i + 1);
    }
    const int pairs = pairsA < pairsB ? pairsA : pairsB;
    if (runs != 1 || pairs < 2 || pairs > 3) return 0;
    const bool keptFirst = (p(0) || p(1) || !p(3)) && p(2), keptSecond = (p(4) || p(5) || !p(7)) && p(6);
    return (keptFirst ? 0 : 1) | (keptSecond ? 0 : 2);
}

constexpr auto kRemovable = [] {
    std::array<Byte, 256> table{};
    for (int i = 0; i < 256; ++i) table[static_cast<std::size_t>(i)] = static_cast<Byte>(removableIn(i));
    return table;
}();

/// Works on a copy with a rim of unset pixels, and only where something changed: a round costs what the
/// rims of the shrinking regions are long.
class Thinner {
public:
    explicit Thinner(const PlaneView<Byte>& plane)
        : m_plane(plane), m_pixels(plane.width + 2, plane.height + 2), m_around{-stride(), -stride() + 1,
                                                                                1,         stride() + 1,  //
                                                                                stride(),  stride() - 1,
                                                                                -1,        -stride() - 1} {
        for (int y = 0; y < plane.height; ++y)
            for (int x = 0; x < plane.width; ++x) at(x, y) = plane.row(y)[x] ? kSet : 0;
    }

    void run(int rounds) {
        queueRims();
        for (; !m_queue.empty() && rounds > 0; --rounds) {
            std::vector<Byte*> next;
            removeIn(1, next);
            removeIn(2, next);
            for (Byte* pixel : m_queue) *pixel = static_cast<Byte>(*pixel & ~kQueued);
            m_queue = std::move(next);
            for (Byte* pixel : m_queue) *pixel = static_cast<Byte>((*pixel & kSet) | kQueued);
        }
        for (int y = 0; y < m_plane.height; ++y)
            for (int x = 0; x < m_plane.width; ++x)
                if (!(at(x, y) & kSet)) m_plane.row(y)[x] = 0;
    }

private:
    Byte& at(int x, int y) { return m_pixels.row(y + 1)[x + 1]; }
    std::ptrdiff_t stride() const { return m_pixels.width(); }

    unsigned neighboursOf(const Byte* pixel) const {
        unsigned bits = 0;
        for (std::size_t i = 0; i < 8; ++i) bits |= (pixel[m_around[i]] & unsigned{kSet}) << i;
        return bits;
    }

    void queueRims() {
        for (int y = 0; y < m_plane.height; ++y)
            for (int x = 0; x < m_plane.width; ++x) {
                Byte& pixel = at(x, y);
                if (!(pixel & kSet) || neighboursOf(&pixel) == 255) continue;
                pixel |= kQueued;
                m_queue.push_back(&pixel);
            }
    }

    /// One subpass: all removals are decided on the plane as it stands, then done at once. Neighbours of what
    /// went join this round's queue, for the subpass to come, and the next round's.
    void removeIn(int subpass, std::vector<Byte*>& next) {
        std::vector<Byte*> removed;
        for (Byte* pixel : m_queue)
            if ((*pixel & kSet) && (kRemovable[neighboursOf(pixel)] & subpass)) removed.push_back(pixel);
        for (Byte* pixel : removed) *pixel = static_cast<Byte>(*pixel & ~kSet);
        for (Byte* pixel : removed)
            for (const std::ptrdiff_t offset : m_around) {
                Byte& neighbour = pixel[offset];
                if (!(neighbour & kSet)) continue;
                if (!(neighbour & kQueued)) m_queue.push_back(&neighbour);
                if (!(neighbour & kNext)) next.push_back(&neighbour);
                neighbour |= kQueued | kNext;
            }
    }

    PlaneView<Byte> m_plane;
    Plane<Byte> m_pixels;
    std::array<std::ptrdiff_t, 8> m_around;
    std::vector<Byte*> m_queue;
};

}  // namespace

void ThinMask(PlaneView<Byte> plane) {
    thinMaskRounds(plane, std::numeric_limits<int>::max());
}

void thinMaskRounds(PlaneView<Byte> plane, int rounds) {
    if (plane.valid()) Thinner(plane).run(rounds);
}

}  // namespace zellab
