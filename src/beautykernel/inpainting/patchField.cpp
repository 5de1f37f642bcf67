#include "beautykernel/inpainting/patchField.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "beautykernel/inpainting/patchTables.h"

namespace zellab {

namespace {

constexpr int kMostNeighbours = 16;       // known neighbours that are compared
constexpr std::int32_t kNoCost = 655366;  // above every cost that can be accepted
constexpr std::int32_t kGoodCost = 601;   // below this the search for a cell ends
constexpr std::int32_t kOutsideCost = 3 * 65535;
constexpr int kAngleBins = 401;

std::size_t randomBelow(std::size_t count) {
    // 32 bits hold both, and divide twice as fast.
    return static_cast<std::uint32_t>(std::rand()) % static_cast<std::uint32_t>(count);
}

std::int32_t costBetween(const std::int32_t* cost, std::uint32_t a, std::uint32_t b) {
    std::int32_t sum = 0;
    for (unsigned shift : {0u, 8u, 16u}) sum += cost[256u + ((a >> shift) & 255u) - ((b >> shift) & 255u)];
    return sum;
}

/// 200 bins a half turn, from -pi up.
std::size_t angleBin(int dx, int dy) {
    return static_cast<std::size_t>(
        std::atan2(static_cast<double>(dy), static_cast<double>(dx)) * 200.0 / 3.1415 + 200.0);
}

}  // namespace

PatchField::PatchField(ConstImageView image, PlaneView<const Byte> mask)
    : m_pitch(image.width + 2 * kMargin),
      m_cells(sampleCount(m_pitch, image.height + 2 * kMargin)),
      m_taken(m_cells.size(), -1) {
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) {
            const std::int32_t cell = (y + kMargin) * m_pitch + x + kMargin;
            const Byte* p = image.at(x, y);
            const bool isHole = mask.row(y)[x] != 0;
            m_cells[static_cast<std::size_t>(cell)] = p[0] | std::uint32_t{p[1]} << 8 |
                                                      std::uint32_t{p[2]} << 16 |
                                                      (isHole ? 0u : kSource | kKnown);
            (isHole ? m_targets : m_sources).push_back(cell);
        }
}

void PatchField::orderTargets(int centreX, int centreY) {
    std::array<int, kAngleBins> crowd{};
    const auto binOf = [&](std::int32_t cell) { return angleBin(xOf(cell) - centreX, yOf(cell) - centreY); };
    for (const std::int32_t cell : m_targets) ++crowd[binOf(cell)];

    struct Keyed {
        double key;
        std::int32_t cell;
    };
    std::vector<Keyed> keyed;
    keyed.reserve(m_targets.size());
    for (const std::int32_t cell : m_targets) {
        const double dx = xOf(cell) - centreX, dy = yOf(cell) - centreY;
        keyed.push_back({(dx * dx + dy * dy) / crowd[binOf(cell)], cell});
    }
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](const Keyed& a, const Keyed& b) { return a.key > b.key; });
    std::transform(keyed.begin(), keyed.end(), m_targets.begin(), [](const Keyed& k) { return k.cell; });

    const std::size_t n = m_targets.size();
    const auto reach = static_cast<std::size_t>(static_cast<double>(n) * 0.1);
    if (reach == 0) return;
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t low = i > reach ? i - reach : 0, high = std::min(n - 1, i + reach);
        std::swap(m_targets[i], m_targets[low + randomBelow(high - low)]);
    }
}

int PatchField::collectNeighbours(std::int32_t target, Neighbour* neighbours) const {
    int count = 0;
    for (const CellOffset offset : kNeighbourOffsets) {
        const std::int32_t step = offset.y * m_pitch + offset.x;
        const auto i = static_cast<std::size_t>(target + step);
        if ((m_cells[i] & kKnown) == 0) continue;
        neighbours[count++] = {step, m_cells[i], m_taken[i]};
        if (count == kMostNeighbours) break;
    }
    return count;
}

void PatchField::evaluate(std::int32_t candidate, const Neighbour* neighbours, int count, Best& best) const {
    const std::int32_t* const costs = colourCost().data();
    const std::uint32_t* const cells = m_cells.data() + candidate;
    std::int32_t sum = 0;
    for (const Neighbour* n = neighbours; n != neighbours + count; ++n) {
        const std::uint32_t cell = cells[n->step];
        sum += (cell & kSource) != 0 ? costBetween(costs, n->colour, cell) : kOutsideCost;
        if (sum >= best.cost) return;
    }
    best = {candidate, sum};
}

PatchField::Best PatchField::findBest(std::int32_t target, int tries) const {
    std::array<Neighbour, kMostNeighbours> neighbours;
    const int count = collectNeighbours(target, neighbours.data());
    Best best{-1, kNoCost};
    // What continues a neighbour's source is likely to fit.
    for (int k = 0; k < count; ++k) {
        const Neighbour& n = neighbours[static_cast<std::size_t>(k)];
        if (n.source < 0 || !isSource(n.source - n.step)) continue;
        evaluate(n.source - n.step, neighbours.data(), count, best);
        if (best.cost < kGoodCost) return best;
    }
    for (int k = 0; k < tries && !m_sources.empty(); ++k) {
        evaluate(m_sources[randomBelow(m_sources.size())], neighbours.data(), count, best);
        if (best.cost < kGoodCost) break;
    }
    return best;
}

std::size_t PatchField::runPass(std::size_t count, int tries) {
    std::size_t changes = 0;
    for (std::size_t k = 0; k < count; ++k) {
        const auto target = static_cast<std::size_t>(m_targets[k]);
        m_cells[target] |= kKnown;
        const Best best = findBest(m_targets[k], tries);
        if (best.cell < 0) continue;
        // A cell in the row or in the column of the old source is not taken.
        const std::int32_t old = m_taken[target];
        if (old >= 0 && (xOf(best.cell) == xOf(old) || yOf(best.cell) == yOf(old))) continue;
        m_taken[target] = best.cell;
        m_cells[target] = kKnown | (m_cells[static_cast<std::size_t>(best.cell)] & kColour);
        ++changes;
    }
    return changes;
}

void PatchField::storeColours(ImageView image) const {
    for (const std::int32_t target : m_targets) {
        const std::uint32_t colour = m_cells[static_cast<std::size_t>(target)];
        Byte* p = image.at(xOf(target), yOf(target));
        for (unsigned c = 0; c < 3; ++c) p[c] = static_cast<Byte>(colour >> (8 * c));
    }
}

}  // namespace zellab
