#include "zellab/imageproc/tone/toneBlend.h"

#include <algorithm>
#include <cmath>

#include "zellab/imageproc/core/pixelMath.h"
#include "zellab/imageproc/tone/toneTables.h"

namespace zellab {

namespace {

/// A smooth lift of the levels that leaves black and white: height * u^rise * (1 - u)^fall, u = level / 255.
struct LevelLift {
    double height, rise, fall;
};

/// Lifts of one direction, a channel each.
struct TemperatureLifts {
    LevelLift red, green, blue;
};

constexpr LevelLift kNoLift{0, 1, 1};

/// Fitted to measured samples of the four curves, all of which they meet.
constexpr TemperatureLifts kWarm{{32.0, 0.65, 1.146}, kNoLift, {-30.93, 0.679, 1.035}};
constexpr TemperatureLifts kCool{{-23.74, 0.678, 1.007}, kNoLift, {22.42, 0.571, 1.021}};
/// The gentler set: three fifths of the usual one, with a trace of green, up for warm and down for cool, that
/// keeps skin from turning pink or ashen.
constexpr TemperatureLifts kGentleWarm{{19.2, 0.65, 1.146}, {4.0, 0.65, 1.146}, {-18.56, 0.679, 1.035}};
constexpr TemperatureLifts kGentleCool{{-14.24, 0.678, 1.007}, {-3.0, 0.678, 1.007}, {13.45, 0.571, 1.021}};

ByteTable liftedCurve(const LevelLift& lift) {
    ByteTable curve;
    for (std::size_t i = 0; i < curve.size(); ++i) {
        const double u = static_cast<double>(i) / 255;
        const double delta = lift.height * std::pow(u, lift.rise) * std::pow(1 - u, lift.fall);
        curve[i] = static_cast<Byte>(std::floor(static_cast<double>(i) + delta + 0.5));
    }
    return curve;
}

/// The curve of two straight pieces through (0, 0), (128, knee), (255, 255), rounded.
ByteTable kneeCurve(int knee) {
    constexpr int kKneeAt = 128, kRest = 255 - kKneeAt;
    ByteTable curve;
    for (int i = 0; i < 256; ++i)
        curve[static_cast<std::size_t>(i)] =
            static_cast<Byte>(i <= kKneeAt ? (i * knee + kKneeAt / 2) / kKneeAt
                                           : knee + ((i - kKneeAt) * (255 - knee) + kRest / 2) / kRest);
    return curve;
}

/// curve * weight + identity * (1 - weight), truncated; single precision.
ByteTable blendWithIdentity(const ByteTable& curve, float weight) {
    ByteTable result;
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i] =
            truncateToByte(static_cast<float>(curve[i]) * weight + static_cast<float>(i) * (1.0f - weight));
    return result;
}

void mapBlended(ImageView image, const ByteTable& red, const ByteTable& green, const ByteTable& blue,
                float weight) {
    const ByteTable r = blendWithIdentity(red, weight), g = blendWithIdentity(green, weight),
                    b = blendWithIdentity(blue, weight);
    mapPixels(image, ChannelTables{r, g, b});
}

/// @param redKnee, blueKnee  levels that 128 becomes; green's is the same in both directions
void blendKnees(ImageView image, int redKnee, int blueKnee, float strength) {
    constexpr int kGreenKnee = 138;
    if (!image.valid() || !std::isfinite(strength)) return;
    mapBlended(image, kneeCurve(redKnee), kneeCurve(kGreenKnee), kneeCurve(blueKnee), strength);
}

constexpr int kLowKnee = 103, kHighKnee = 153;

}  // namespace

void ColorTemperatureBlend(ImageView image, float strength, char flag) {
    if (!image.valid() || std::isnan(strength)) return;
    const float limited = std::clamp(strength, 0.0f, 1.0f);
    const float distance = std::abs(limited - 0.5f);
    if (distance < 1e-6f) return;
    const bool warm = limited > 0.5f, gentle = flag == 1;
    const TemperatureLifts& lifts = gentle ? (warm ? kGentleWarm : kGentleCool) : (warm ? kWarm : kCool);
    mapBlended(image, liftedCurve(lifts.red), liftedCurve(lifts.green), liftedCurve(lifts.blue),
               2.0f * distance);
}

void ToneTableBlend(ImageView image, float strength) {
    blendKnees(image, kLowKnee, kHighKnee, strength);
}

void ToneTableBlendWarm(ImageView image, float strength) {
    blendKnees(image, kHighKnee, kLowKnee, strength);
}

}  // namespace zellab
