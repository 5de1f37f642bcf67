#include "inference/smoothness.h"

#include <algorithm>
#include <cstddef>

namespace zellab::platform {

namespace {

constexpr int kReach = 3;                 // samples to each side: a coarse edge is off by about this much
constexpr float kRangeOfNoTrust = 0.25f;  // share of the map's range within a window that leaves no trust

/// Smallest or largest (by `better`) of each sample's window along one axis.
template <typename Better>
std::vector<float> windowExtreme(const std::vector<float>& in, int count, std::ptrdiff_t step, int lines,
                                 std::ptrdiff_t lineStep, const Better& better) {
    std::vector<float> out(in.size());
    for (int line = 0; line < lines; ++line)
        for (int i = 0; i < count; ++i) {
            const float* start = in.data() + line * lineStep;
            float best = start[i * step];
            for (int j = std::max(0, i - kReach); j <= std::min(count - 1, i + kReach); ++j)
                if (better(start[j * step], best)) best = start[j * step];
            out[static_cast<std::size_t>(line * lineStep + i * step)] = best;
        }
    return out;
}

template <typename Better>
std::vector<float> squareExtreme(const std::vector<float>& in, int width, int height, const Better& better) {
    return windowExtreme(windowExtreme(in, width, 1, height, width, better), height, width, width, 1, better);
}

}  // namespace

std::vector<float> confidenceFromSmoothness(const std::vector<float>& depth, int width, int height) {
    const auto less = [](float a, float b) { return a < b; };
    const auto more = [](float a, float b) { return a > b; };
    std::vector<float> confidence(depth.size(), 1.0f);
    if (depth.empty()) return confidence;
    const float whole = *std::max_element(depth.begin(), depth.end(), less) -
                        *std::min_element(depth.begin(), depth.end(), less);
    if (!(whole > 0.0f)) return confidence;
    const std::vector<float> low = squareExtreme(depth, width, height, less);
    const std::vector<float> high = squareExtreme(depth, width, height, more);
    for (std::size_t i = 0; i < depth.size(); ++i)
        confidence[i] = 1.0f - std::min(1.0f, (high[i] - low[i]) / whole / kRangeOfNoTrust);
    return confidence;
}

}  // namespace zellab::platform
