// What the skin retouch does to skin of every tone, and how far its form for small pictures lies from the one
// for large ones. Prints the tables of docs/measures.md. Usage: zel_retouch_measures ASSETS [FACES-A-TONE]
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <vector>

#include "libzel/faces/faceRecords.h"
#include "portrait/portrait.h"
#include "zel_effects/zel_effects.h"

namespace {

using Bytes = std::vector<unsigned char>;

constexpr std::array kToneNames = {"porcelain", "fair", "beige", "olive", "tan", "brown", "ebony"};
constexpr std::array kStrengths = {0.0f, 0.5f, 1.0f};
constexpr unsigned kFirstSeed = 21;
constexpr int kSmallSide = 640;  // the largest picture that is worked on as it is

zel::Portrait portraitOf(int width, int height, int tone, unsigned seed) {
    zel::PortraitParams params;
    params.width = width;
    params.height = height;
    params.seed = seed;
    params.skinTone = static_cast<zel::SkinTone>(tone);
    params.freckles = 0.2;
    params.moles = 4;
    return zel::drawPortrait(params);
}

Bytes retouched(const zel::Portrait& portrait, float strength) {
    Bytes rgba = portrait.image.rgba;
    zel::FaceInfoBlock faces(portrait.faces);
    ZelImageCore::TableSkin::ImageProcessWithQornSkinRetouch(
        rgba.data(), portrait.image.width, portrait.image.height, strength, faces.get(), nullptr);
    return rgba;
}

double luma(const unsigned char* p) {
    return 0.299 * p[0] + 0.587 * p[1] + 0.114 * p[2];
}

struct SkinFigures {
    double luma = 0, redOverGreen = 0, blueOverGreen = 0;
    double texture = 0;  // deviation of the finest scale, as a share of the brightness
};

/// Of pixels that are skin with all their neighbours.
SkinFigures figuresOf(const zel::Portrait& portrait, const Bytes& rgba) {
    const int width = portrait.image.width, height = portrait.image.height;
    std::array<double, 3> colour{};
    double brightness = 0, squares = 0, count = 0;
    for (int y = 1; y < height - 1; ++y)
        for (int x = 1; x < width - 1; ++x) {
            double around = 0;
            bool skin = true;
            const auto at = [&](int dx, int dy) {
                return static_cast<std::size_t>((y + dy) * width + x + dx);
            };
            for (int dy = -1; dy <= 1; ++dy)
                for (int dx = -1; dx <= 1; ++dx) {
                    skin &= portrait.skin.samples[at(dx, dy)] == 255;
                    around += luma(&rgba[4 * at(dx, dy)]) / 9;
                }
            if (!skin) continue;
            const unsigned char* p = &rgba[4 * at(0, 0)];
            for (std::size_t c = 0; c < 3; ++c) colour[c] += p[c];
            brightness += luma(p);
            squares += (luma(p) - around) * (luma(p) - around);
            ++count;
        }
    return {brightness / count, colour[0] / colour[1], colour[2] / colour[1],
            std::sqrt(squares / count) / (brightness / count)};
}

void printTones(int faces) {
    std::printf("skin tone, strength: brightness before and after, texture kept, red and blue over green\n");
    for (int tone = 0; tone < static_cast<int>(kToneNames.size()); ++tone)
        for (const float strength : kStrengths) {
            SkinFigures before, after;
            double kept = 0;
            const auto add = [faces](SkinFigures& sum, const SkinFigures& one) {
                sum.luma += one.luma / faces;
                sum.redOverGreen += one.redOverGreen / faces;
                sum.blueOverGreen += one.blueOverGreen / faces;
            };
            for (int i = 0; i < faces; ++i) {
                const zel::Portrait portrait =
                    portraitOf(700, 900, tone, kFirstSeed + static_cast<unsigned>(i));
                const SkinFigures was = figuresOf(portrait, portrait.image.rgba);
                const SkinFigures is = figuresOf(portrait, retouched(portrait, strength));
                add(before, was);
                add(after, is);
                kept += is.texture / was.texture / faces;
            }
            std::printf("%-9s %.1f: %3.0f %3.0f, %.2f, %.3f %.3f, %.3f %.3f\n",
                        kToneNames[static_cast<std::size_t>(tone)], static_cast<double>(strength),
                        before.luma, after.luma, kept, before.redOverGreen, after.redOverGreen,
                        before.blueOverGreen, after.blueOverGreen);
        }
}

/// How far the whole strength moves brightness from none of it, on skin and off the person. Levels and tone
/// curve are the same in both.
void printPlaces(int faces) {
    std::printf("mean change of brightness by the strength: on skin, off the person\n");
    for (int tone = 0; tone < static_cast<int>(kToneNames.size()); ++tone) {
        std::array<double, 2> change{}, count{};
        for (int i = 0; i < faces; ++i) {
            const zel::Portrait portrait = portraitOf(700, 900, tone, kFirstSeed + static_cast<unsigned>(i));
            const Bytes none = retouched(portrait, 0.0f), whole = retouched(portrait, 1.0f);
            for (std::size_t k = 0; k < portrait.skin.samples.size(); ++k) {
                const bool skin = portrait.skin.samples[k] == 255;
                if (!skin && portrait.person.samples[k] != 0) continue;
                change[skin ? 0 : 1] += std::fabs(luma(&whole[4 * k]) - luma(&none[4 * k]));
                ++count[skin ? 0 : 1];
            }
        }
        std::printf("%-9s %.1f %.1f\n", kToneNames[static_cast<std::size_t>(tone)], change[0] / count[0],
                    change[1] / count[1]);
    }
}

/// Mean colours of the cells that both pictures divide into alike, so that the pixel by which they differ in
/// size does not count.
std::vector<double> cells(const Bytes& rgba, int side) {
    constexpr int kCells = 32;
    std::vector<double> sums(3 * kCells * kCells), counts(kCells * kCells);
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            const auto cell = static_cast<std::size_t>(y * kCells / side * kCells + x * kCells / side);
            const auto pixel = 4 * static_cast<std::size_t>(y * side + x);
            for (std::size_t c = 0; c < 3; ++c) sums[3 * cell + c] += rgba[pixel + c];
            ++counts[cell];
        }
    for (std::size_t i = 0; i < sums.size(); ++i) sums[i] /= counts[i / 3];
    return sums;
}

/// Mean absolute difference and mean difference.
std::array<double, 2> apart(const std::vector<double>& a, const std::vector<double>& b) {
    std::array<double, 2> mean{};
    for (std::size_t i = 0; i < a.size(); ++i) {
        mean[0] += std::fabs(a[i] - b[i]) / static_cast<double>(a.size());
        mean[1] += (b[i] - a[i]) / static_cast<double>(a.size());
    }
    return mean;
}

void printPaths(int faces) {
    std::printf(
        "from %d to %d pixels a side, cells of 20 pixels: mean absolute and mean difference, levels\n",
        kSmallSide, kSmallSide + 1);
    for (int step = -1; step < static_cast<int>(kStrengths.size()); ++step) {
        std::array<double, 2> sum{};
        for (int i = 0; i < faces * static_cast<int>(kToneNames.size()); ++i) {
            const int tone = i % static_cast<int>(kToneNames.size());
            const unsigned seed = kFirstSeed + static_cast<unsigned>(i);
            const zel::Portrait small = portraitOf(kSmallSide, kSmallSide, tone, seed);
            const zel::Portrait large = portraitOf(kSmallSide + 1, kSmallSide + 1, tone, seed);
            const auto result = [step](const zel::Portrait& portrait) {
                return step < 0 ? portrait.image.rgba
                                : retouched(portrait, kStrengths[static_cast<std::size_t>(step)]);
            };
            const auto one = apart(cells(result(small), kSmallSide), cells(result(large), kSmallSide + 1));
            for (std::size_t k = 0; k < 2; ++k)
                sum[k] += one[k] / (faces * static_cast<double>(kToneNames.size()));
        }
        if (step < 0)
            std::printf("untouched: %.2f %+.2f\n", sum[0], sum[1]);
        else
            std::printf("strength %.1f: %.2f %+.2f\n",
                        static_cast<double>(kStrengths[static_cast<std::size_t>(step)]), sum[0], sum[1]);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "usage: zel_retouch_measures ASSETS [FACES-A-TONE]\n");
        return 2;
    }
    std::filesystem::current_path(argv[1]);
    const int faces = argc > 2 ? std::max(std::atoi(argv[2]), 1) : 4;
    printTones(faces);
    printPlaces(faces);
    printPaths(faces);
}
