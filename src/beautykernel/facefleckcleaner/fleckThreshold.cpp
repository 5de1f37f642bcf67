#include "beautykernel/facefleckcleaner/fleckThreshold.h"

#include <cstdint>
#include <numeric>

namespace zellab {

namespace {

constexpr float kDarkShare = 0.03f;  // of the values

int totalOf(const Histogram& histogram) {
    return std::accumulate(histogram.begin(), histogram.end(), 0);
}

/// The first bin with more than `share` of the values at or below it; 0 where there is none.
int binAbove(const Histogram& histogram, float share) {
    const int limit = static_cast<int>(static_cast<float>(totalOf(histogram)) * share);
    int count = 0;
    for (int i = 0; i < 256; ++i) {
        count += histogram[static_cast<std::size_t>(i)];
        if (count > limit) return i;
    }
    return 0;
}

}  // namespace

int otsuBin(const Histogram& histogram) {
    const int total = totalOf(histogram);
    std::int64_t sum = 0;
    for (int i = 0; i < 256; ++i) sum += std::int64_t{i} * histogram[static_cast<std::size_t>(i)];
    // Counts and sums are exact; means and scores are in single precision.
    int best = 0, below = 0;
    std::int64_t sumBelow = 0;
    float bestScore = 0.0f;
    for (int i = 0; i < 256; ++i) {
        below += histogram[static_cast<std::size_t>(i)];
        sumBelow += std::int64_t{i} * histogram[static_cast<std::size_t>(i)];
        const int above = total - below;
        if (below == 0 || above == 0) continue;
        const auto n0 = static_cast<float>(below), n1 = static_cast<float>(above);
        const float apart = static_cast<float>(sumBelow) / n0 - static_cast<float>(sum - sumBelow) / n1;
        const float score = n0 * n1 * (apart * apart);
        if (score > bestScore) {
            bestScore = score;
            best = i;
        }
    }
    return best;
}

int darkThreshold(const Histogram& histogram) {
    return (otsuBin(histogram) + binAbove(histogram, kDarkShare)) / 2;
}

}  // namespace zellab
