// What the removal of dark circles leaves of them, on synthetic faces whose truth is known, and whether it
// leaves a seam. Prints the table of docs/measures.md. Usage: zel_dark_circle_measures [FACES [FIRST-SEED]]
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "portrait/portrait.h"
#include "zel_effects/zel_effects.h"

namespace {

using Bytes = std::vector<unsigned char>;

constexpr int kWidth = 1200, kHeight = 1600, kTones = 7;
constexpr double kCircles = 0.9;
constexpr int kCell = 12;              // pixels; a circle is 80 by 30
constexpr unsigned char kMarked = 64;  // of the truth's cover: what a viewer takes for the circle

struct Row {
    int method;
    float strength;
    std::vector<double> removed, removedPixels, seam;
    double irisChanged = 0, irises = 0;
};

zellab::Vector2f pointOf(const zel::Portrait& portrait, std::size_t i) {
    const auto& p = portrait.faces.faces.front().points[i];
    return {p.x * kWidth, p.y * kHeight};
}

double difference(const unsigned char* a, const unsigned char* b) {
    return (std::abs(a[0] - b[0]) + std::abs(a[1] - b[1]) + std::abs(a[2] - b[2])) / 3.0;
}

/// Mean distance to the face without circles, where the truth marks them on skin: of single pixels, whose
/// texture the repair exchanges, or of the mean colours of cells of so many pixels a side.
double distanceToClean(const zel::Portrait& portrait, const Bytes& rgba, int cell) {
    double sum = 0, count = 0;
    for (int top = 0; top < kHeight; top += cell)
        for (int left = 0; left < kWidth; left += cell) {
            std::array<double, 3> apart{};
            for (int y = top; y < std::min(top + cell, kHeight); ++y)
                for (int x = left; x < std::min(left + cell, kWidth); ++x) {
                    const auto i = static_cast<std::size_t>(y * kWidth + x);
                    if (portrait.darkCircles.samples[i] <= kMarked || portrait.eyes.samples[i] != 0) continue;
                    ++count;
                    for (std::size_t c = 0; c < 3; ++c)
                        apart[c] += rgba[4 * i + c] - portrait.clean.rgba[4 * i + c];
                }
            for (double channel : apart) sum += std::fabs(channel) / 3;
        }
    return sum / std::max(count, 1.0);
}

double luma(const Bytes& rgba, std::size_t i) {
    return 0.299 * rgba[4 * i] + 0.587 * rgba[4 * i + 1] + 0.114 * rgba[4 * i + 2];
}

double gradient(const Bytes& rgba, std::size_t i) {
    return std::hypot(luma(rgba, i + 1) - luma(rgba, i - 1), luma(rgba, i + kWidth) - luma(rgba, i - kWidth));
}

/// By how much the mean gradient along the changed region's edge exceeds that of the clean face there. The
/// edge on the lids and lashes, which have gradients of their own, is left out.
double seamExcess(const zel::Portrait& portrait, const Bytes& after) {
    const Bytes& before = portrait.image.rgba;
    const auto changed = [&](std::size_t i) { return difference(&before[4 * i], &after[4 * i]) >= 1; };
    double excess = 0, count = 0;
    for (int y = 3; y < kHeight - 3; ++y)
        for (int x = 3; x < kWidth - 3; ++x) {
            const auto i = static_cast<std::size_t>(y * kWidth + x);
            if (changed(i) == changed(i + 1) && changed(i) == changed(i + kWidth)) continue;
            bool skin = true;
            for (int dy = -3; dy <= 3; ++dy)
                for (int dx = -3; dx <= 3; ++dx)
                    skin &= portrait.skin.samples[i + static_cast<std::size_t>(dx + dy * kWidth)] == 255;
            if (!skin) continue;
            excess += gradient(after, i) - gradient(portrait.clean.rgba, i), ++count;
        }
    return excess / std::max(count, 1.0);
}

void measure(unsigned seed, std::vector<Row>& rows) {
    zel::PortraitParams params;
    params.width = kWidth, params.height = kHeight, params.seed = seed, params.darkCircles = kCircles;
    params.skinTone = static_cast<zel::SkinTone>(seed % kTones);
    const zel::Portrait portrait = zel::drawPortrait(params);
    std::array<zellab::Vector2f, 83> landmarks;
    for (std::size_t i = 0; i < landmarks.size(); ++i) landmarks[i] = pointOf(portrait, i);
    zellab::CInterFacePoint points;
    points.SetFaceCount(1);
    points.AddFace(landmarks.data(), 0);
    const auto& rect = portrait.faces.faces.front().rect;
    const double was = distanceToClean(portrait, portrait.image.rgba, kCell),
                 wasPixels = distanceToClean(portrait, portrait.image.rgba, 1);
    for (Row& row : rows) {
        CGRect face = {rect[0] * kWidth, rect[1] * kHeight, rect[2] * kWidth, rect[3] * kHeight};
        Bytes after = portrait.image.rgba;
        ZelImageCore::TableSkin::ImageProcessWithAutoRemoveBlackCircle(after.data(), kWidth, kHeight, face,
                                                                       &points, 0, row.strength, row.method);
        row.removed.push_back(100 * (1 - distanceToClean(portrait, after, kCell) / was));
        row.removedPixels.push_back(100 * (1 - distanceToClean(portrait, after, 1) / wasPixels));
        row.seam.push_back(seamExcess(portrait, after));
        for (std::size_t i = 0; i < portrait.iris.samples.size(); ++i)
            if (portrait.iris.samples[i] > 250)
                ++row.irises, row.irisChanged += difference(&after[4 * i], &portrait.image.rgba[4 * i]) > 4;
    }
}

void print(Row& row) {
    std::sort(row.removed.begin(), row.removed.end());
    std::sort(row.seam.begin(), row.seam.end());
    const auto mean = [](const std::vector<double>& v) {
        double sum = 0;
        for (double x : v) sum += x;
        return sum / static_cast<double>(v.size());
    };
    std::printf("| %d | %.2f | %.0f %% | %.0f to %.0f %% | %.0f %% | %.1f | %.1f | %.2f %% |\n", row.method,
                static_cast<double>(row.strength), mean(row.removed), row.removed.front(), row.removed.back(),
                mean(row.removedPixels), mean(row.seam), row.seam.back(), 100 * row.irisChanged / row.irises);
}

}  // namespace

int main(int argc, char** argv) {
    const int faces = argc > 1 ? std::atoi(argv[1]) : 28, first = argc > 2 ? std::atoi(argv[2]) : 1;
    std::vector<Row> rows;
    for (int method : {0, 1})
        for (float strength : {0.55f, 1.0f}) rows.push_back({method, strength, {}, {}, {}});
    for (int i = 0; i < faces; ++i) {
        measure(static_cast<unsigned>(first + i), rows);
    }
    std::printf(
        "| method | strength | removed, mean | over the faces | pixel by pixel | seam, mean | worst | iris "
        "pixels changed |\n"
        "|--:|--:|--:|--:|--:|--:|--:|--:|\n");
    for (Row& row : rows) print(row);
}
