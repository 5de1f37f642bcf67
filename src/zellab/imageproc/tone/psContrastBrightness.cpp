#include "zellab/imageproc/tone/psContrastBrightness.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zellab {

namespace {

constexpr int kWhite = 255, kEntries = 256;
constexpr int kLastBrightness = 150, kFirstContrast = -50, kLastContrast = 100;

/// A brightness curve by its slope. Along the foot the slope is exp(growth * row). Beyond the knee it falls
/// to kEndSlope with z, the distance from the knee in hundredths, as exp(-fall * z - bell * z * z); `fall` is
/// whatever brings the curve to white at the end.
struct BrightShape {
    double row, growth, knee, bell;
};

/// Fitted to measured samples of these five rows, all of which they meet; rows between are interpolated
/// linearly, which keeps every entry rising with the row.
constexpr BrightShape kBrightShapes[] = {
    {1, 0.00624, 97.25, 0.053},   {30, 0.00630, 104.0, 0.517}, {75, 0.00634, 69.75, 0.493},
    {120, 0.00631, 69.75, 0.692}, {150, 0.00629, 56.5, 0.750},
};
/// Entries over which the foot turns into the shoulder.
constexpr double kKneeWidth = 3.0;
/// The least slope of a shoulder. It keeps the top of the mirrored rows from becoming a cliff.
constexpr double kEndSlope = 0.02;

using Curve = std::array<double, kEntries>;

BrightShape brightShape(int row) {
    const BrightShape* right = kBrightShapes + 1;
    while (right->row < row) ++right;
    const BrightShape& a = right[-1];
    const BrightShape& b = *right;
    const double t = (row - a.row) / (b.row - a.row);
    return {static_cast<double>(row), std::lerp(a.growth, b.growth, t), std::lerp(a.knee, b.knee, t),
            std::lerp(a.bell, b.bell, t)};
}

/// log(1 + exp(x)) without overflow: 0 far below the knee, x far above it.
double softRamp(double x) {
    return std::max(x, 0.0) + std::log1p(std::exp(-std::abs(x)));
}

/// The unrounded curve of a row in 1..150.
Curve brightCurve(int row) {
    const BrightShape shape = brightShape(row);
    Curve z, base;  // distance from the knee; slope above the least, without the fall
    for (int i = 0; i < kEntries; ++i) {
        z[i] = kKneeWidth * softRamp((i - shape.knee) / kKneeWidth) / 100;
        base[i] = (std::exp(shape.growth * row) - kEndSlope) * std::exp(-shape.bell * z[i] * z[i]);
    }
    // Newton's method on the fall: the end value is convex and falls with it, so it converges from below.
    Curve curve{};
    double fall = 0;
    constexpr int kMostSteps = 50;
    for (int step = 0; step < kMostSteps; ++step) {
        double end = 0, change = 0, before = base[0] * std::exp(-fall * z[0]);
        for (int i = 1; i < kEntries; ++i) {
            const double slope = base[i] * std::exp(-fall * z[i]);
            end += kEndSlope + (before + slope) / 2;
            change -= (before * z[i - 1] + slope * z[i]) / 2;
            curve[i] = end;
            before = slope;
        }
        constexpr double kCloseEnough = 1e-9;
        if (std::abs(end - kWhite) < kCloseEnough) break;
        fall -= (end - kWhite) / change;
    }
    return curve;
}

/// The rising curve mirrored at the diagonal, by straight lines between its entries.
Curve mirrored(const Curve& curve) {
    Curve result{};
    int i = 1;
    for (int y = 0; y < kEntries; ++y) {
        while (i < kWhite && curve[i] < y) ++i;
        result[y] = i - 1 + (y - curve[i - 1]) / (curve[i] - curve[i - 1]);
    }
    return result;
}

ByteTable rounded(const Curve& curve) {
    ByteTable table;
    for (std::size_t i = 0; i < kEntries; ++i)
        table[i] = static_cast<Byte>(std::clamp(std::floor(curve[i] + 0.5), 0.0, 255.0));
    return table;
}

/// Height of the contrast parabolas for one row, in levels: an S moves its quarter points by this much.
constexpr double kContrastHeight = 0.2401;
constexpr int kContrastCentre = 128;

/// Level of entry i of a contrast row: the parabola through both ends of its half.
double contrastLevel(int row, int i) {
    const bool upper = i >= kContrastCentre;
    const double start = upper ? kContrastCentre : 0,
                 length = upper ? kWhite - kContrastCentre : kContrastCentre;
    const double t = (i - start) / length;
    const double bulge = 4 * t * (1 - t) * kContrastHeight * row;
    return upper ? i + bulge : i - bulge;
}

/// Limits a slider to -100..100; NaN becomes 0.
float sliderValue(float value) {
    return value >= -100.0f ? std::min(value, 100.0f) : value < -100.0f ? -100.0f : 0.0f;
}

}  // namespace

ByteTable BrightnessTable(int row) {
    if (row == 0 || row < -kLastBrightness || row > kLastBrightness) return {};
    const Curve curve = brightCurve(std::abs(row));
    return rounded(row > 0 ? curve : mirrored(curve));
}

ByteTable ContrastTable(int row) {
    if (row == 0 || row < kFirstContrast || row > kLastContrast) return {};
    Curve curve;
    for (int i = 0; i < kEntries; ++i) curve[i] = contrastLevel(row, i);
    return rounded(curve);
}

void PSContrastBrightness::Run(ImageView image, float brightness, float contrast) {
    if (!image.valid()) return;
    const float b = sliderValue(brightness), c = sliderValue(contrast);
    // Truncation of value + 0.5 rounds negative halves towards zero: -100 gives rows -149 and -49.
    const int brightnessRow = static_cast<int>(b * 0.01f * 150.0f + 0.5f);
    const int contrastRow = static_cast<int>(c < 0.0f ? c * 0.5f + 0.5f : c);
    if (brightnessRow == 0 && contrastRow == 0) return;
    const ByteTable brightnessTable = BrightnessTable(brightnessRow),
                    contrastTable = ContrastTable(contrastRow);
    // One pass over the picture: contrast on the result of brightness is a table of its own.
    ByteTable both;
    for (std::size_t i = 0; i < kEntries; ++i) {
        const Byte bright = brightnessRow != 0 ? brightnessTable[i] : static_cast<Byte>(i);
        both[i] = contrastRow != 0 ? contrastTable[bright] : bright;
    }
    mapPixels(image, both);
}

}  // namespace zellab
