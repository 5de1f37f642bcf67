#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <map>

#include "beautykernel/inpainting/patchField.h"
#include "beautykernel/inpainting/patchTables.h"
#include "beautykernel/wrinkle_cleaner/neighbourDonor.h"
#include "support/randomImage.h"
#include "zellab/imageproc/edges/edgeDetect.h"
#include "zellab/imageproc/poisson/quietDonor.h"

namespace {

using namespace zellab;
using zeltest::Bytes;

int slowCost(int difference) {
    const double d = difference / 256.0 / 0.117, full = 1 / 0.117;
    return std::min(static_cast<int>(std::log(d * d + 1) / std::log(full * full + 1) * 65536), 65535);
}

/// A field of cells as a list of records; a pass walks the targets as it is told, step by step.
struct SlowField {
    struct Cell {
        int sourceX = -1, sourceY = -1;
        bool known = false, isSource = false;
    };
    int w, h;
    Bytes& rgba;
    std::vector<Cell> cells;
    std::vector<int> targets, sources;

    SlowField(Bytes& picture, const Bytes& mask, int width, int height)
        : w(width), h(height), rgba(picture), cells(mask.size()) {
        for (std::size_t i = 0; i < mask.size(); ++i) {
            cells[i].known = cells[i].isSource = !mask[i];
            (mask[i] ? targets : sources).push_back(static_cast<int>(i));
        }
    }
    bool inside(int x, int y) const { return x >= 0 && x < w && y >= 0 && y < h; }
    Cell& at(int x, int y) { return cells[static_cast<std::size_t>(y * w + x)]; }
    int colour(int x, int y, int c) const { return rgba[static_cast<std::size_t>((y * w + x) * 4 + c)]; }

    std::size_t pass(std::size_t count, int tries) {
        std::size_t changes = 0;
        for (std::size_t k = 0; k < count; ++k) {
            const int tx = targets[k] % w, ty = targets[k] / w;
            at(tx, ty).known = true;
            std::vector<CellOffset> near;
            for (const CellOffset o : kNeighbourOffsets)
                if (near.size() < 16 && inside(tx + o.x, ty + o.y) && at(tx + o.x, ty + o.y).known)
                    near.push_back(o);
            int best = 655366, bestX = -1, bestY = -1;
            const auto evaluate = [&](int cx, int cy) {
                int sum = 0;
                for (const CellOffset o : near) {
                    int cost = 3 * 65535;
                    if (inside(cx + o.x, cy + o.y) && at(cx + o.x, cy + o.y).isSource) {
                        cost = 0;
                        for (int c = 0; c < 3; ++c)
                            cost += slowCost(colour(tx + o.x, ty + o.y, c) - colour(cx + o.x, cy + o.y, c));
                    }
                    sum += cost;
                    if (sum >= best) return;
                }
                best = sum, bestX = cx, bestY = cy;
            };
            for (const CellOffset o : near) {
                const Cell& n = at(tx + o.x, ty + o.y);
                const int cx = n.sourceX - o.x, cy = n.sourceY - o.y;
                if (n.sourceX >= 0 && inside(cx, cy) && at(cx, cy).isSource) evaluate(cx, cy);
                if (best < 601) break;
            }
            for (int t = 0; t < tries && best >= 601 && !sources.empty(); ++t) {
                const int s = sources[static_cast<std::size_t>(std::rand()) % sources.size()];
                evaluate(s % w, s / w);
            }
            Cell& cell = at(tx, ty);
            if (bestX < 0 || bestX == cell.sourceX || bestY == cell.sourceY) continue;
            cell.sourceX = bestX, cell.sourceY = bestY;
            ++changes;
            for (int c = 0; c < 3; ++c)
                rgba[static_cast<std::size_t>((ty * w + tx) * 4 + c)] =
                    static_cast<Byte>(colour(bestX, bestY, c));
        }
        return changes;
    }
};

TEST(PatchField, PassesMatchTheWalkBitForBit) {
    for (unsigned seed = 1; seed <= 12; ++seed) {
        const int w = 20 + static_cast<int>(seed), h = 17 + static_cast<int>(seed * 5 % 13);
        Bytes fast = zeltest::patternRgba(w, h, seed), slow = fast;
        Bytes mask = zeltest::randomPlane(w, h, seed + 50);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                Byte& m = mask[static_cast<std::size_t>(y * w + x)];
                m = (x > 6 && x < 14 && y > 4 && y < 12) || m > 250;
            }
        PatchField field({fast.data(), w, h}, {mask.data(), w, h});
        SlowField reference(slow, mask, w, h);
        ASSERT_EQ(field.targetCount(), reference.targets.size());
        for (const std::size_t share : {1u, 1u, 2u}) {
            const std::size_t count = field.targetCount() / share;
            std::srand(seed);
            const std::size_t changes = field.runPass(count, 30);
            std::srand(seed);
            ASSERT_EQ(changes, reference.pass(count, 30)) << seed;
        }
        field.storeColours({fast.data(), w, h});
        ASSERT_EQ(fast, slow) << seed;
    }
}

/// The exchanges as they are told, on single blocks and pixels: order of the blocks, roughness by plain
/// means, donors.
struct SlowExchange {
    int size, w, h;
    const Bytes& rgba;
    const Bytes& mask;
    int columns = w / size, rows = h / size;
    std::vector<long> rough = {}, edges = {};  // of each pixel

    using Block = std::pair<int, int>;  // column, row
    std::size_t pixel(int x, int y) const { return static_cast<std::size_t>(y * w + x); }
    template <typename Visit>
    void visit(Block b, const Visit& visitPixel) const {
        for (int y = b.second * size; y < b.second * size + size; ++y)
            for (int x = b.first * size; x < b.first * size + size; ++x) visitPixel(x, y);
    }
    long sum(const std::vector<long>& plane, Block b) const {
        long total = 0;
        visit(b, [&](int x, int y) { total += plane[pixel(x, y)]; });
        return total;
    }
    bool isHole(int bx, int by) const {
        bool hole = false;
        visit({bx, by}, [&](int x, int y) { hole = hole || mask[pixel(x, y)]; });
        return hole;
    }
    bool fits(int bx, int by) const { return bx >= 0 && by >= 0 && bx < columns && by < rows; }
    std::vector<Block> order() const {
        std::vector<Block> list;
        const auto append = [&](int bx, int by) {
            if (fits(bx, by) && isHole(bx, by) &&
                std::find(list.begin(), list.end(), Block{bx, by}) == list.end())
                list.emplace_back(bx, by);
        };
        for (int by = 0; by < rows; ++by)
            for (int bx = 0; bx < columns; ++bx) {
                int holes = 0;
                for (int y = by; y < std::min(by + 3, rows); ++y)
                    for (int x = bx; x < std::min(bx + 3, columns); ++x) holes += isHole(x, y) ? 255 : 0;
                if (holes < 2295) append(bx, by);
            }
        // NOLINTNEXTLINE(modernize-loop-convert): the list grows on the way
        for (std::size_t i = 0; i < list.size(); ++i) {
            const auto [bx, by] = list[i];
            append(bx + 1, by), append(bx, by + 1), append(bx - 1, by), append(bx, by - 1);
        }
        return list;
    }
    void findRoughness(int low, int high) {
        Bytes green(mask.size()), found(mask.size());
        for (std::size_t i = 0; i < green.size(); ++i) green[i] = rgba[4 * i + 1];
        EdgeDetectCanny({green.data(), w, h}, {found.data(), w, h}, low, high, false);
        edges.assign(found.begin(), found.end());
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                int total = 0, count = 0;
                for (int ny = std::max(y - 2, 0); ny < std::min(y + 4, h); ++ny)
                    for (int nx = std::max(x - 2, 0); nx < std::min(x + 4, w); ++nx, ++count)
                        total += green[pixel(nx, ny)];
                // NOLINTNEXTLINE(clang-analyzer-core.DivideZero): the pixel itself is among them
                rough.push_back(found[pixel(x, y)] > 128 ? 255
                                                         : std::abs(green[pixel(x, y)] - total / count));
            }
    }
    void lend(Block hole, Block donor, const GradientField& before, GradientField& after) const {
        const int dx = (donor.first - hole.first) * size, dy = (donor.second - hole.second) * size;
        for (std::size_t c = 0; c < 3; ++c) {
            int sumX = 0, sumY = 0, count = 0;  // of the first round; the second meets the same pixels
            for (const bool writes : {false, true})
                visit(hole, [&](int x, int y) {
                    if (!mask[pixel(x, y)]) return;
                    const auto& d = before.at(x + dx, y + dy);
                    if (writes && count > 0) {
                        after.at(x, y).right[c] = static_cast<std::int16_t>(d.right[c] - sumX / count);
                        after.at(x, y).down[c] = static_cast<std::int16_t>(d.down[c] - sumY / count);
                    } else if (!writes) {
                        sumX += d.right[c], sumY += d.down[c], ++count;
                    }
                });
        }
    }

    /// Each block lends once; the smoothest within two blocks, or the hole block itself.
    void quiet(const GradientField& before, GradientField& after) {
        findRoughness(5, 10);
        std::map<Block, int> usage;
        for (const Block& hole : order()) {
            Block best = hole;
            for (int y = hole.second - 2; y <= hole.second + 2; ++y)
                for (int x = hole.first - 2; x <= hole.first + 2; ++x) {
                    const Block b{std::clamp(x, 0, columns - 1), std::clamp(y, 0, rows - 1)};
                    if (sum(rough, b) < sum(rough, best) && usage[b] < 1) best = b;
                }
            ++usage[best];
            lend(hole, best, before, after);
        }
    }

    /// Of the smoothest neighbours the one with the fewest edges and marks; a pixel that lent grows rougher.
    void neighbours(const GradientField& before, GradientField& after) {
        findRoughness(8, 20);
        for (std::size_t i = 0; i < mask.size(); ++i)
            if (mask[i] > 254) edges[i] = 255;
        for (const Block& hole : order()) {
            std::vector<Block> list;
            for (const auto& [dx, dy] :
                 {Block{0, -1}, {-1, 0}, {1, 0}, {0, 1}, {-1, -1}, {-1, 1}, {1, -1}, {1, 1}})
                if (fits(hole.first + dx, hole.second + dy))
                    list.emplace_back(hole.first + dx, hole.second + dy);
            if (const std::size_t fitting = list.size(); fitting > 3) {
                std::vector<Block> chosen;
                long s[3];
                for (long& lowest : s) {
                    auto best = list.begin();
                    for (auto b = list.begin(); b != list.end(); ++b)
                        if (sum(rough, *b) < sum(rough, *best)) best = b;
                    lowest = sum(rough, *best);
                    chosen.push_back(*best);
                    list.erase(best);
                }
                list = {chosen[0]};
                if (2 * s[0] >= s[1]) list.push_back(chosen[1]);
                if (2 * s[0] >= s[1] && 3 * s[0] >= s[2] && fitting >= 6) list.push_back(chosen[2]);
            }
            Block donor = list[0];
            for (const Block& b : list)
                if (sum(edges, b) < sum(edges, donor)) donor = b;
            lend(hole, donor, before, after);
            visit(hole, [&](int x, int y) {
                long& lent = rough[pixel(x + (donor.first - hole.first) * size,
                                         y + (donor.second - hole.second) * size)];
                if (mask[pixel(x, y)]) lent = std::min(lent + 15, 255L);
            });
        }
    }
};

/// A picture of flat cells, in which many blocks are equally smooth: the order of the neighbours decides.
Bytes flatCells(int width, int height, int cell, unsigned seed) {
    const int columns = width / cell + 1;
    const Bytes colours = zeltest::patternRgba(columns, height / cell + 1, seed);
    Bytes pixels;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const auto from = colours.begin() + 4 * (y / cell * columns + x / cell);
            pixels.insert(pixels.end(), from, from + 4);
        }
    return pixels;
}

TEST(GradientExchange, DonorsMatchTheSteps) {
    int exchanged = 0;
    for (unsigned seed = 1; seed <= 16; ++seed)
        for (const bool quiet : {true, false}) {
            const int w = 70 + static_cast<int>(seed) * 3, h = 64 + static_cast<int>(seed),
                      size = quiet ? 9 : 7;
            const Bytes rgba = seed % 2 ? zeltest::patternRgba(w, h, seed) : flatCells(w, h, 2 * size, seed);
            Bytes mask(static_cast<std::size_t>(w * h), 0), pixels = rgba;
            for (int y = 10; y < 50; ++y)
                for (int x = 14; x < 14 + static_cast<int>(seed) * 3; ++x)
                    mask[static_cast<std::size_t>(y * w + x)] = 255;
            const ConstImageView view(pixels.data(), w, h);
            GradientField fast(view), slow(view);
            const GradientField before = copyOf(slow);
            (quiet ? quietDonorExchange(size) : neighbourDonorExchange(size))(view, {mask.data(), w, h},
                                                                              fast);
            SlowExchange reference{size, w, h, rgba, mask};
            quiet ? reference.quiet(before, slow) : reference.neighbours(before, slow);
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x) {
                    ASSERT_EQ(fast.at(x, y).right, slow.at(x, y).right)
                        << quiet << seed << ": " << x << ',' << y;
                    ASSERT_EQ(fast.at(x, y).down, slow.at(x, y).down)
                        << quiet << seed << ": " << x << ',' << y;
                    exchanged += fast.at(x, y).right != before.at(x, y).right;
                }
        }
    EXPECT_GT(exchanged, 3000) << "pixels that took a gradient of another place";
}

}  // namespace
