#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "beautykernel/facefleckcleaner/fleckDetection.h"
#include "beautykernel/facefleckcleaner/fleckFill.h"
#include "beautykernel/facefleckcleaner/fleckThreshold.h"
#include "beautykernel/facefleckcleaner/textureTransplant.h"
#include "reference/slowRegions.h"
#include "support/randomImage.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace {

using namespace zellab;
using zeltest::Bytes;

/// Otsu's rule from the definition: both classes are counted anew for every bin.
int slowOtsu(const Histogram& h) {
    int best = 0;
    float bestScore = 0;
    for (int cut = 0; cut < 256; ++cut) {
        long n[2] = {0, 0}, sum[2] = {0, 0};
        for (int v = 0; v < 256; ++v) {
            n[v > cut] += h[static_cast<std::size_t>(v)];
            sum[v > cut] += long{v} * h[static_cast<std::size_t>(v)];
        }
        if (!n[0] || !n[1]) continue;
        const auto n0 = static_cast<float>(n[0]), n1 = static_cast<float>(n[1]);
        const float d = static_cast<float>(sum[0]) / n0 - static_cast<float>(sum[1]) / n1;
        if (n0 * n1 * (d * d) > bestScore) {
            bestScore = n0 * n1 * (d * d);
            best = cut;
        }
    }
    return best;
}

TEST(FleckThreshold, MatchesTheDefinition) {
    std::mt19937 random(3);
    for (int round = 0; round < 60; ++round) {
        Histogram h{};
        const int kinds = 1 + round % 7;
        for (int i = 0; i < kinds * kinds; ++i) h[random() % 256] += static_cast<int>(random() % 500);
        EXPECT_EQ(otsuBin(h), slowOtsu(h)) << round;
    }
    EXPECT_EQ(darkThreshold(Histogram{}), 0);
    // 97 bright and 3 dark values: Otsu parts them at 10, and the bin above 3 in 100 is the bright one.
    Histogram h{};
    h[10] = 3, h[200] = 97;
    EXPECT_EQ(darkThreshold(h), (10 + 200) / 2);
}

/// Labels of the regions that the limits let pass, as they are told, in the order of their first pixel.
std::vector<int> slowFlecks(const Bytes& plane, int w, int h) {
    slow::Labels found = slow::labelRegions(plane, w, h);
    const auto s = static_cast<float>(std::min(w, h));
    const float a = std::min(std::max(s * 0.001f, 1.0f), 3.0f), b = std::max(s * 0.028f, 1.0f);
    const int least = static_cast<int>(4 * a * a), most = static_cast<int>((2 * b) * (2 * b));
    const int longest = static_cast<int>(std::sqrt(static_cast<float>(most)) * 1.15f + 0.5f);
    std::vector<int> renamed = {0};
    int kept = 0;
    for (const auto& [top, bottom, left, right] : found.boxes) {
        const int bw = right - left + 1, bh = bottom - top + 1;
        const auto area = static_cast<int>(
            std::count(found.labels.begin(), found.labels.end(), static_cast<int>(renamed.size())));
        const bool fits = area >= least && area <= most && bh >= 2 && bh <= longest && bw >= 2 &&
                          bw < longest + 1 && bw * bh * 256 / area < 560 &&
                          std::max(bw, bh) * 256 / std::min(bw, bh) <= 720;
        renamed.push_back(fits ? ++kept : 0);
    }
    for (int& label : found.labels) label = renamed[static_cast<std::size_t>(label)];
    return found.labels;
}

TEST(FleckShapes, MatchAFloodOnRandomSpots) {
    int kept = 0;
    for (unsigned seed = 1; seed <= 40; ++seed) {
        const int w = 60 + static_cast<int>(seed) * 4, h = 50 + static_cast<int>(seed) * 5;
        Bytes plane(static_cast<std::size_t>(w * h), 0);
        std::mt19937 random(seed);
        for (int k = 0; k < 40; ++k) {
            const int bw = 1 + static_cast<int>(random() % 14), bh = 1 + static_cast<int>(random() % 14);
            const int x0 = static_cast<int>(random() % static_cast<unsigned>(w - bw)),
                      y0 = static_cast<int>(random() % static_cast<unsigned>(h - bh));
            for (int y = y0; y < y0 + bh; ++y)
                for (int x = x0; x < x0 + bw; ++x)
                    if (k % 2 || random() % 3) plane[static_cast<std::size_t>(y * w + x)] = 255;
        }
        const FoundFlecks found = shapedLikeFlecks({plane.data(), w, h});
        const std::vector<int> expected = slowFlecks(plane, w, h);
        ASSERT_TRUE(std::equal(expected.begin(), expected.end(), found.labels.data())) << seed;
        const auto count = static_cast<std::size_t>(*std::max_element(expected.begin(), expected.end()));
        ASSERT_EQ(found.boxes.size(), count) << seed;
        kept += static_cast<int>(count);
    }
    EXPECT_GT(kept, 100);
}

TEST(FleckShapes, SkinDecidesWhatStays) {
    // Flecks of 6 by 4 with none, four, two and three of their columns off the skin.
    const int w = 40, h = 10;
    Bytes skin(static_cast<std::size_t>(w * h), 160);
    FoundFlecks flecks;
    flecks.labels = Plane<int>(w, h);
    for (int k = 0; k < 4; ++k) {
        const int left = 2 + 9 * k;
        flecks.boxes.push_back({3, 6, left, left + 5});
        for (int y = 3; y <= 6; ++y)
            for (int x = left; x <= left + 5; ++x) {
                flecks.labels.view().row(y)[x] = k + 1;
                const int off = k == 1 ? 4 : k == 2 ? 2 : k == 3 ? 3 : 0;
                if (x >= left + 6 - off) skin[static_cast<std::size_t>(y * w + x)] = 159;
            }
    }
    keepOnSkin(flecks, {skin.data(), w, h});
    ASSERT_EQ(flecks.boxes.size(), 3u);  // the second is dropped
    EXPECT_EQ(flecks.boxes[0].right, 7);
    EXPECT_EQ(flecks.boxes[1].right, 25) << "more inside than outside: whole";
    EXPECT_EQ(flecks.boxes[2].right, 31) << "as many outside as inside: cut down";
    EXPECT_EQ(flecks.labels.view().row(4)[12], 0);
    EXPECT_EQ(flecks.labels.view().row(4)[25], 2);
    EXPECT_EQ(flecks.labels.view().row(4)[31], 3);
    EXPECT_EQ(flecks.labels.view().row(4)[32], 0);
}

/// The fill as it is told, without classes: a running colour along each of the four ways.
void slowFill(Bytes& rgba, const std::vector<int>& labels, int w, int h,
              const std::vector<FleckRect>& flecks) {
    const float r = std::max(static_cast<float>(std::min(w, h)) * 0.028f, 1.0f);
    const int n = static_cast<int>(std::sqrt((2 * r) * (2 * r)) * 1.15f + 0.5f) + 2;
    const auto g = [n](int k) {
        return k < n ? static_cast<long>(std::exp(-static_cast<float>(k * k) / static_cast<float>(n)) *
                                         1048576.0f)
                     : 0L;
    };
    const int mx = std::clamp(w / 200, 1, 5), my = std::clamp(h / 200, 1, 5);
    std::vector<long> weights(labels.size()), sums(labels.size() * 3);
    for (std::size_t f = 0; f < flecks.size(); ++f) {
        const FleckRect b = flecks[f];
        const int label = static_cast<int>(f) + 1;
        const auto walk = [&](std::vector<std::size_t> path, bool writes) {
            long c[3], k = 0;
            for (std::size_t ch = 0; ch < 3; ++ch) c[ch] = rgba[path[0] * 4 + ch];
            for (const std::size_t i : path) {
                if (labels[i] < 0) {
                    for (std::size_t ch = 0; ch < 3; ++ch) c[ch] = (c[ch] + rgba[i * 4 + ch] + 1) / 2;
                    k = 1;
                } else if (labels[i] == label) {
                    const long weight = k > 0 ? g(static_cast<int>(k)) : 0;
                    for (std::size_t ch = 0; ch < 3; ++ch) {
                        if (!writes) {
                            sums[i * 3 + ch] += weight * c[ch];
                        } else if (weight + weights[i] > 0) {
                            rgba[i * 4 + ch] = static_cast<Byte>((weight * c[ch] + sums[i * 3 + ch]) /
                                                                 (weight + weights[i]));
                        }
                    }
                    if (!writes) weights[i] += weight;
                    if (k > 0) ++k;
                }
            }
        };
        const auto at = [w](int x, int y) { return static_cast<std::size_t>(y * w + x); };
        for (int y = b.top; y <= b.bottom; ++y) {
            std::vector<std::size_t> right, left;
            for (int x = std::max(b.left - mx, 0); x <= b.right; ++x) right.push_back(at(x, y));
            for (int x = std::min(b.right + mx, w - 1); x >= b.left; --x) left.push_back(at(x, y));
            walk(right, false);
            walk(left, false);
        }
        for (int x = b.left; x <= b.right; ++x) {
            std::vector<std::size_t> up, down;
            for (int y = std::min(b.bottom + my, h - 1); y >= b.top; --y) up.push_back(at(x, y));
            for (int y = std::max(b.top - my, 0); y <= b.bottom; ++y) down.push_back(at(x, y));
            walk(up, false);
            walk(down, true);
        }
    }
}

TEST(FleckFill, MatchesTheWalksBitForBit) {
    for (unsigned seed = 1; seed <= 30; ++seed) {
        std::mt19937 random(seed);
        const int w = seed % 5 == 0 ? 410 : 23 + static_cast<int>(random() % 60),
                  h = 21 + static_cast<int>(random() % 60);
        std::vector<int> labels(static_cast<std::size_t>(w * h));
        for (int& l : labels) l = random() % 6 ? -static_cast<int>(random() % 255) : 0;
        std::vector<FleckRect> flecks;
        for (int k = 0; k < 6; ++k) {
            const int bw = 2 + static_cast<int>(random() % 9), bh = 2 + static_cast<int>(random() % 9);
            const int x0 = static_cast<int>(random() % static_cast<unsigned>(w - bw)),
                      y0 = static_cast<int>(random() % static_cast<unsigned>(h - bh));
            flecks.push_back({y0, y0 + bh - 1, x0, x0 + bw - 1});
            for (int y = y0; y < y0 + bh; ++y)
                for (int x = x0; x < x0 + bw; ++x)
                    if (random() % 5) labels[static_cast<std::size_t>(y * w + x)] = k + 1;
        }
        Bytes fast = zeltest::patternRgba(w, h, seed), expected = fast;
        FillFlecks({fast.data(), w, h}, {labels.data(), w, h}, flecks);
        slowFill(expected, labels, w, h, flecks);
        ASSERT_EQ(fast, expected) << "seed " << seed;
    }
}

TEST(TextureTransplant, TheRimFormsAboveAndToTheLeft) {
    // A fleck of 6 by 6 in a box that is two pixels wider all around.
    const int w = 60, h = 60;
    Bytes rgba = zeltest::patternRgba(w, h, 4);
    const Bytes before = rgba;
    std::vector<int> labels(static_cast<std::size_t>(w * h), -200);
    const auto isFleck = [](int x, int y) { return x >= 30 && x < 36 && y >= 30 && y < 36; };
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            if (isFleck(x, y)) labels[static_cast<std::size_t>(y * w + x)] = 1;
    const auto records =
        TransplantTexture({rgba.data(), w, h}, {labels.data(), w, h}, {{28, 37, 28, 37}}, {{1, 0}});
    int rim = 0;
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {
            const std::size_t i = static_cast<std::size_t>(y * w + x) * 4;
            const bool changed = !std::equal(&rgba[i], &rgba[i] + 3, &before[i]);
            const bool mayChange = isFleck(x, y) || (x >= 29 && x <= 36 && y == 29) ||
                                   (x == 29 && y >= 29 && y < 36) || (x == 36 && y >= 29 && y < 35);
            ASSERT_TRUE(mayChange || !changed) << x << ',' << y;
            ASSERT_EQ(labels[static_cast<std::size_t>(y * w + x)], isFleck(x, y) ? -255 : -200);
            rim += changed && !isFleck(x, y);
            ASSERT_EQ(rgba[i + 3], before[i + 3]);
        }
    EXPECT_GT(rim, 12);
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].area, records[0].width * records[0].height);
    EXPECT_EQ(records[0].left, 27);
    EXPECT_EQ(records[0].width, 12);
}

}  // namespace
