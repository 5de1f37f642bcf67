#include "zellab/imageproc/edgeaware/surfaceBlurParts.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace zellab::surface {

Weights::Weights(int threshold) {
    std::array<int, kLevels> byDistance{};
    // Double precision, where a float step is single elsewhere: at the usual threshold of 10 every fifth
    // weight ends on a whole number, and single precision falls one short of it.
    const double step = 96.0 / threshold;
    double value = 255.0;
    int count = 0;
    do {
        byDistance[static_cast<std::size_t>(count++)] = static_cast<int>(value + 0.4);
        value -= step;
    } while (!(value < -0.4) && count < kLevels);
    reach = count - 1;
    const int length = (2 * reach + kVector) / kVector * kVector;
    weight.resize(static_cast<std::size_t>(length));
    moment.resize(weight.size());
    for (int d = -reach; d <= reach; ++d) {
        const int w = byDistance[static_cast<std::size_t>(std::abs(d))];
        weight[static_cast<std::size_t>(d + reach)] = static_cast<std::int16_t>(d == 0 ? 2 * w : w);
        moment[static_cast<std::size_t>(d + reach)] = static_cast<std::int16_t>(d * w);
    }
}

Disc::Disc(int r) : radius(r) {
    for (int d = 0; d <= r; ++d) half.push_back(extent(d, 0.0f));
}

int Disc::extent(int dy, float more) const {
    const int square = ((2 * radius + 1) * (2 * radius + 1) + 2) >> 2;
    const float reach = std::sqrt(static_cast<float>(square - dy * dy)) + more;
    return static_cast<int>(std::min(reach, static_cast<float>(radius)));
}

}  // namespace zellab::surface
