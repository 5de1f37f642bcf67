// What depth of field keeps sharp and what it blurs on photographs, in places marked by hand; docs/measures.md holds
// what it prints: the energy of the gradients after to before.
//   zel_place_measures ASSETS PHOTOGRAPHS PLACES [OUT]
// With OUT, a folder, the results are left there as PPM files.

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>
#include <zel/zel.hpp>

#include "libzel/failure.h"
#include "photographMarks.h"

namespace {

using namespace zelmeasures;

constexpr const char* kEffect = "defocus";
constexpr const char* kSubject = "subject";

constexpr double kKept = 0.9, kBlurred = 0.5;  // what a sharp place should keep, and ground at most
constexpr double kLost = 0.7;                  // below it a sharp place is visibly soft
constexpr std::size_t kNamed = 12;             // of the worst places of each kind

double luma(const zel::Image& image, int x, int y) {
    const unsigned char* p =
        &image.rgba[4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                         static_cast<std::size_t>(x))];
    return 0.299 * p[0] + 0.587 * p[1] + 0.114 * p[2];
}

/// The sum of squared differences of neighbours within the place.
double energy(const zel::Image& image, const MarkedPlace& place) {
    if (place.x + place.width > image.width || place.y + place.height > image.height)
        throw zel::Failure(place.what + ": reaches over the picture's edge");
    double sum = 0;
    for (int y = place.y; y + 1 < place.y + place.height; ++y)
        for (int x = place.x; x + 1 < place.x + place.width; ++x) {
            const double here = luma(image, x, y), dx = luma(image, x + 1, y) - here,
                         dy = luma(image, x, y + 1) - here;
            sum += dx * dx + dy * dy;
        }
    return sum;
}

/// How the effect is told about persons: a value of its parameter, none where this version has no such parameter.
std::vector<std::string> ways() {
    const zel_effect* effect = nullptr;
    libzel::require(zel_effect_find(kEffect, &effect));
    for (std::size_t i = 0; i < effect->parameter_count; ++i)
        if (effect->parameters[i]->name == std::string(kSubject)) return {"none", "person"};
    return {""};
}

struct Ratio {
    std::string place;
    double value = 0;
};

/// What one way made of all photographs.
struct Score {
    std::string way;
    std::vector<Ratio> sharp, ground;
};

void writePpm(const std::string& path, const zel::Image& image) {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    if (!file) throw zel::Failure(path + ": cannot be written");
    std::fprintf(file, "P6 %d %d 255\n", image.width, image.height);
    for (std::size_t i = 0; i < image.rgba.size(); i += 4) std::fwrite(&image.rgba[i], 1, 3, file);
    std::fclose(file);
}

zel_pixels pixelsOf(zel::Image& image) {
    return {image.rgba.data(), image.width, image.height, 0, ZEL_RGBA8, 0};
}

void measure(zel_context* context, const zel::Image& before, const PhotographPlaces& photograph, Score& score,
             const std::string& out) {
    zel::Image after = before;
    const libzel::Faces faces = libzel::findFaces(context, pixelsOf(after));
    libzel::Values values;
    if (!score.way.empty()) values.set(kSubject, score.way);
    libzel::apply(context, kEffect, pixelsOf(after), values, faces.get());
    if (!out.empty()) writePpm(out + "/" + photograph.name + "-" + score.way + ".ppm", after);
    for (const MarkedPlace& place : photograph.places)
        (place.sharp ? score.sharp : score.ground)
            .push_back({photograph.name + ": " + place.what, energy(after, place) / energy(before, place)});
}

double shareOf(const std::vector<Ratio>& ratios, bool (*counts)(double)) {
    const auto count =
        std::count_if(ratios.begin(), ratios.end(), [&](const Ratio& ratio) { return counts(ratio.value); });
    return 100.0 * static_cast<double>(count) / static_cast<double>(ratios.size());
}

double medianOf(std::vector<Ratio> ratios) {
    std::sort(ratios.begin(), ratios.end(), [](const Ratio& a, const Ratio& b) { return a.value < b.value; });
    return ratios[ratios.size() / 2].value;
}

void print(const std::vector<Score>& scores) {
    std::printf(
        "| `subject` | sharp places | at least %.1f kept | below %.1f | median | places of ground | at most "
        "%.1f left | "
        "median |\n|---|--:|--:|--:|--:|--:|--:|--:|\n",
        kKept, kLost, kBlurred);
    for (const Score& score : scores)
        std::printf("| %s | %zu | %.0f %% | %.0f %% | %.2f | %zu | %.0f %% | %.2f |\n",
                    score.way.empty() ? "not to be had" : score.way.c_str(), score.sharp.size(),
                    shareOf(score.sharp, [](double v) { return v >= kKept; }),
                    shareOf(score.sharp, [](double v) { return v < kLost; }), medianOf(score.sharp),
                    score.ground.size(), shareOf(score.ground, [](double v) { return v <= kBlurred; }),
                    medianOf(score.ground));
}

/// The places that fall short, the worst first.
void printWorst(const char* title, std::vector<Ratio> ratios, bool sharp) {
    std::sort(ratios.begin(), ratios.end(),
              [&](const Ratio& a, const Ratio& b) { return sharp ? a.value < b.value : a.value > b.value; });
    std::printf("- %s:", title);
    for (std::size_t i = 0; i < std::min(ratios.size(), kNamed); ++i) {
        if (sharp ? ratios[i].value >= kKept : ratios[i].value <= kBlurred) break;
        std::printf("%s %s %.2f", i ? ";" : "", ratios[i].place.c_str(), ratios[i].value);
    }
    std::printf(".\n");
}

void measureAll(const char* assets, const std::string& folder, const std::string& places,
                const std::string& out) {
    auto settings = libzel::sized<zel_settings>();
    settings.assets = assets;
    const libzel::Context context = libzel::createContext(&settings);
    std::vector<Score> scores;
    for (const std::string& way : ways()) scores.push_back({way, {}, {}});
    for (const PhotographPlaces& photograph : readPlaces(readText(places))) {
        const zel::Image picture = loadPhotograph(folder, photograph.name);
        for (Score& score : scores) measure(context.get(), picture, photograph, score, out);
    }
    print(scores);
    std::printf("\n");
    for (const Score& score : scores) {
        const std::string with = score.way.empty() ? "" : " with " + score.way;
        printWorst(("Worst sharp places" + with).c_str(), score.sharp, true);
        printWorst(("Worst ground" + with).c_str(), score.ground, false);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 4) {
        std::fprintf(stderr, "Usage: zel_place_measures ASSETS PHOTOGRAPHS PLACES [OUT]\n");
        return 2;
    }
    try {
        measureAll(argv[1], argv[2], argv[3], argc > 4 ? argv[4] : "");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
