// How near the iris finder comes to the true irises, on synthetic eyes of every colour and skin tone, half
// closed, looking aside, in hard light and noise. Prints the tables of docs/measures.md.
// Usage: zel_iris_measures [PORTRAITS]
#include <cstdio>
#include <cstdlib>

#include "support/syntheticEyes.h"

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

}  // namespace

int main(int argc, char** argv) {
    const int count = argc > 1 ? std::atoi(argv[1]) : 100;
    const float moves[] = {0.0f, 0.05f, 0.10f};
    Tally tallies[3], landmarkAlone;
    int shut = 0, hidden = 0;
    for (unsigned seed = 1; seed <= static_cast<unsigned>(count); ++seed) {
        zel::PortraitParams params = zeltest::eyesToMeasure(seed);
        const zel::Portrait open = zel::drawPortrait(params);
        for (int i = 0; i < 3; ++i) {
            const zeltest::FacePoints points(open, seed, moves[i]);
            const auto errors = zeltest::irisErrors(open, points);
            tallies[i].add(errors);
            if (std::getenv("ZEL_EACH") && i == 2)
                std::printf("seed %u: %.3f %.3f  %.3f %.3f found %d %d\n", seed, errors[0].centre,
                            errors[0].radius, errors[1].centre, errors[1].radius, errors[0].found,
                            errors[1].found);
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
}
