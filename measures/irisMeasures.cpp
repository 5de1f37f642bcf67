// How near the iris finder comes to the true irises, on synthetic eyes of every colour and skin tone, half
// closed, looking aside, in hard light and noise. Prints the tables of docs/measures.md.
// Usage: zel_iris_measures [PORTRAITS [FIRST-SEED]]
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "support/syntheticEyes.h"
#include "zel_effects/zel_effects.h"

namespace {

struct Tally {
    int pairs = 0, centres = 0, radii = 0, both = 0, refused = 0;
    double centreError = 0, radiusError = 0;
    int eyes = 0;

    void add(const std::array<zeltest::IrisError, 2>& errors) {
        bool centre = true, radius = true;
        for (const zeltest::IrisError& e : errors) {
            centre &= e.found && e.centre <= zeltest::kCentreLimit;
            radius &= e.found && e.radius <= zeltest::kRadiusLimit;
            refused += !e.found;
            if (e.found) centreError += e.centre, radiusError += e.radius, ++eyes;
        }
        ++pairs, centres += centre, radii += radius, both += centre && radius;
    }
    void print(const char* name) const {
        std::printf("| %s | %d | %d | %d | %d | %.1f %% | %.1f %% | %d |\n", name, pairs, centres, radii,
                    both, 100 * centreError / std::max(eyes, 1), 100 * radiusError / std::max(eyes, 1),
                    refused);
    }
};

/// What a brightener that trusted the landmarks would have: the pupil as it is, and an average radius.
std::array<zeltest::IrisError, 2> landmarkErrors(const zel::Portrait& portrait,
                                                 const zeltest::FacePoints& face) {
    std::array<zeltest::IrisError, 2> errors;
    for (int eye = 0; eye < 2; ++eye) {
        const float width = face.eyeWidth(eye);
        const zellab::Iris iris = {face.pupil(eye).x, face.pupil(eye).y, 0.2f * width};
        errors[static_cast<std::size_t>(eye)] =
            zeltest::errorOf(iris, portrait.irises[static_cast<std::size_t>(eye)], width);
    }
    return errors;
}

/// What the effect does to whites, irises and what lies around the eyes, on larger portraits.
struct Looks {
    double white = 0, whiteBefore = 0, whiteAfter = 0, castBefore = 0, castAfter = 0, bright = 0;
    double iris = 0, irisBefore = 0, irisAfter = 0, spreadBefore = 0, spreadAfter = 0, around = 0,
           aroundChange = 0;

    static double luma(const unsigned char* p) { return 0.299 * p[0] + 0.587 * p[1] + 0.114 * p[2]; }
    static double cast(const unsigned char* p) {
        return std::max({p[0], p[1], p[2]}) - std::min({p[0], p[1], p[2]});
    }

    void add(const zel::Portrait& portrait, const std::vector<unsigned char>& after) {
        double sums[2] = {}, squares[2] = {}, count = 0;
        for (std::size_t i = 0; i < portrait.eyes.samples.size(); ++i) {
            const unsigned char *a = &portrait.image.rgba[4 * i], *b = &after[4 * i];
            const int eye = portrait.eyes.samples[i], inside = portrait.iris.samples[i];
            if (inside > 250) {
                const double levels[2] = {luma(a), luma(b)};
                for (int k = 0; k < 2; ++k) sums[k] += levels[k], squares[k] += levels[k] * levels[k];
                ++count;
            } else if (eye > 250 && inside == 0) {
                ++white, whiteBefore += luma(a), whiteAfter += luma(b), castBefore += cast(a),
                    castAfter += cast(b);
                bright += std::min({b[0], b[1], b[2]}) >= 250;
            } else if (eye == 0) {
                const double change = std::abs(luma(a) - luma(b));
                if (change > 0) ++around, aroundChange += change;
            }
        }
        if (count == 0) return;
        ++iris, irisBefore += sums[0] / count, irisAfter += sums[1] / count;
        for (int k = 0; k < 2; ++k)
            (k ? spreadAfter : spreadBefore) +=
                std::sqrt(std::max(squares[k] / count - sums[k] / count * (sums[k] / count), 0.0));
    }
    void print(const char* name) const {
        std::printf(
            "| %s | %.1f to %.1f | %.1f to %.1f | %.2f %% | %.1f to %.1f | %.1f to %.1f | %.0f, by %.1f |\n",
            name, whiteBefore / white, whiteAfter / white, castBefore / white, castAfter / white,
            100 * bright / white, irisBefore / iris, irisAfter / iris, spreadBefore / iris,
            spreadAfter / iris, around / iris, aroundChange / std::max(around, 1.0));
    }
};

void measureLooks() {
    constexpr unsigned kPortraits = 25;
    Looks fixed, usual, strong;
    for (unsigned seed = 1; seed <= kPortraits; ++seed) {
        zel::PortraitParams params;
        params.seed = seed, params.width = 900, params.height = 1200;
        params.skinTone = static_cast<zel::SkinTone>(seed % 7);
        params.irisColour = static_cast<zel::IrisColour>(seed / 2 % 7);
        const zel::Portrait portrait = zel::drawPortrait(params);
        zeltest::FacePoints face(portrait, seed, 0);
        const auto run = [&](float white, float tolerance, float iris) {
            std::vector<unsigned char> out = portrait.image.rgba;
            ZelImageCore::TableSkin::ImageProcessWithAutoEyeBright(out.data(), params.width, params.height,
                                                                   &face.points(), 0, 100, 0, 0, 40, white,
                                                                   tolerance, iris, 1.0f, 0.4f, 1.0f);
            return out;
        };
        fixed.add(portrait, run(70, 0, 40));
        usual.add(portrait, run(70, 50, 60));
        strong.add(portrait, run(100, 50, 100));
    }
    std::printf(
        "\n| call | whites, luma | whites, largest less smallest channel | whites at 250 or more | irises, "
        "mean luma | "
        "irises, deviation of luma | pixels changed outside the eyes, a portrait "
        "|\n|--|--:|--:|--:|--:|--:|--:|\n");
    fixed.print("whiteGain 70, darkTolerance 0, irisGain 40");
    usual.print("the command's defaults: 70, 50, 60");
    strong.print("100, 50, 100");
}

}  // namespace

int main(int argc, char** argv) {
    const int count = argc > 1 ? std::atoi(argv[1]) : 100, first = argc > 2 ? std::atoi(argv[2]) : 1;
    const float moves[] = {0.0f, 0.05f, 0.10f};
    Tally tallies[3], landmarkAlone;
    int shut = 0, hidden = 0;
    for (int i = first; i < first + count; ++i) {
        const auto seed = static_cast<unsigned>(i);
        zel::PortraitParams params = zeltest::eyesToMeasure(seed);
        const zel::Portrait open = zel::drawPortrait(params);
        for (int k = 0; k < 3; ++k) {
            const zeltest::FacePoints points(open, seed, moves[k]);
            const auto errors = zeltest::irisErrors(open, points);
            tallies[k].add(errors);
        }
        landmarkAlone.add(landmarkErrors(open, zeltest::FacePoints(open, seed, 0.10f)));
        params.eyeOpen = 0;
        const zel::Portrait closed = zel::drawPortrait(params);
        for (const auto& e : zeltest::irisErrors(closed, zeltest::FacePoints(closed, seed, 0)))
            shut += !e.found;
        for (const auto& e : zeltest::irisErrors(closed, zeltest::FacePoints(open, seed, 0)))
            hidden += !e.found;
    }
    std::printf(
        "| pupil landmark off by | pairs | centres within 8 %% | radii within 12 %% | both | mean centre "
        "error "
        "| mean radius error | eyes refused |\n|--|--:|--:|--:|--:|--:|--:|--:|\n");
    tallies[0].print("nothing");
    tallies[1].print("5 % of the eye's width");
    tallies[2].print("10 %");
    landmarkAlone.print("10 %, the landmark taken as it is");
    std::printf("\nClosed eyes refused: %d of %d; closed eyes under landmarks of open ones: %d of %d.\n",
                shut, 2 * count, hidden, 2 * count);
    measureLooks();
}
