#include "beautykernel/eyebright/eyeTone.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace zellab {

namespace {

constexpr float kLeastShape = 0.3f;   // pixels nearer to the lids do not count
constexpr float kIrisInside = 0.81f;  // square of nine tenths of the radius
constexpr float kMostApart = 0.1f;    // ratios of the two eyes

/// Sums over pixels of whole levels.
struct LevelSums {
    std::int64_t count = 0, sum = 0, squares = 0;

    void add(int level) { ++count, sum += level, squares += level * level; }
};

/// Mean square deviation from the mean; exact up to the division.
float variance(const LevelSums& s) {
    return static_cast<float>(s.count * s.squares - s.sum * s.sum) / static_cast<float>(s.count * s.count);
}

}  // namespace

EyeTone estimateEyeTone(const EyeCut& eye) {
    LevelSums white, iris, irisLightness;
    for (int y = 0; y < eye.box.height; ++y)
        for (int x = 0; x < eye.box.width; ++x) {
            if (eye.lidShape.view().row(y)[x] < kLeastShape) continue;
            const Byte* p = eye.pixels().at(x, y);
            const int most = std::max({p[0], p[1], p[2]}), least = std::min({p[0], p[1], p[2]});
            if (eye.irisRadial.view().row(y)[x] >= kIrisInside) {
                white.add(most);
            } else {
                iris.add(most);
                irisLightness.add((most + least) / 2);
            }
        }
    EyeTone tone;
    if (white.count > 0) {
        const std::int64_t wholeMean = white.sum / white.count;
        const auto mean = static_cast<float>(wholeMean);
        const float meanSquare = static_cast<float>(white.squares) / static_cast<float>(white.count);
        const float deviation = std::sqrt(std::max(meanSquare - mean * mean, 0.0f));
        tone.level = static_cast<int>(mean * 0.8f + 40.0f);
        tone.spread = static_cast<int>(deviation * 0.8f + 4.0f);
    }
    float varied = 0.0f;
    if (iris.count > 0) {
        tone.ratio = static_cast<float>(iris.sum) / static_cast<float>(iris.count * 255);
        varied = variance(irisLightness);
    }
    const float gain = (20.0f * varied / 65025.0f + static_cast<float>(tone.level) / 255.0f) * 0.9f;
    tone.ratio /= std::min(1.0f, gain);
    return tone;
}

void balanceTones(EyeTone& left, EyeTone& right) {
    const float middle = (left.ratio + right.ratio) / 2.0f, apart = left.ratio - right.ratio;
    if (std::abs(apart) <= kMostApart) return;
    const float half = apart > 0.0f ? kMostApart / 2.0f : -kMostApart / 2.0f;
    left.ratio = middle + half;
    right.ratio = middle - half;
}

}  // namespace zellab
