// How far the landmarks that are found lie from the true ones: draws portraits from seeds that the fit has
// not learnt from, in sizes from 160 to 900 pixels, finds their faces, and prints the error of each in pupil
// distances.
//   measureLandmarks [COUNT] [FIRST-SEED] [FOLDER]
// With a folder of networks those find the faces, else the built-in finder.

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "libzel/faces/faceFinder.h"
#include "libzel/faces/faceFrame.h"
#include "libzel/faces/networkFinder.h"
#include "variedPortrait.h"

namespace {

constexpr int kSizes[] = {160, 240, 360, 600, 900};  // pixels of the picture's height

/// Landmarks that belong together, to see where a fit is weak.
struct Group {
    const char* name;
    std::vector<std::pair<std::size_t, std::size_t>> runs;
    double sum = 0;
};

void addErrors(std::vector<Group>& groups, const zel::Landmarks& points, const zel::Landmarks& truth) {
    for (Group& group : groups) {
        double sum = 0;
        std::size_t count = 0;
        for (const auto& [first, last] : group.runs)
            for (std::size_t i = first; i <= last; ++i, ++count)
                sum += std::hypot(points[i].x - truth[i].x, points[i].y - truth[i].y);
        group.sum += sum / static_cast<double>(count) / static_cast<double>(zel::pupilDistance(truth));
    }
}

}  // namespace

int main(int argc, char** argv) {
    const int count = argc > 1 ? std::atoi(argv[1]) : 100;
    const unsigned firstSeed = argc > 2 ? static_cast<unsigned>(std::atoi(argv[2])) : 1;
    std::string reason;
    const auto networks = argc > 3 ? zel::NetworkFinder::load(argv[3], reason) : std::nullopt;
    if (!reason.empty()) std::fprintf(stderr, "%s\n", reason.c_str());
    zel::FaceDetector detector(zel::detectorFolder());
    const auto find = [&](const zel::Image& image) {
        return networks ? networks->find({image.rgba.data(), image.width, image.height})
                        : zel::findFaces(image, detector);
    };
    std::vector<float> errors;
    std::vector<Group> groups = {
        {"contour", {{0, 18}}},          {"eyes", {{19, 28}, {65, 74}}}, {"pupils", {{24, 24}, {70, 70}}},
        {"brows", {{29, 36}, {75, 82}}}, {"mouth", {{37, 54}}},          {"nose", {{55, 64}}}};
    int missed = 0, extra = 0;
    for (int i = 0; i < count; ++i) {
        const int size = kSizes[static_cast<std::size_t>(i) % std::size(kSizes)];
        const unsigned seed = firstSeed + static_cast<unsigned>(i);
        const zel::Portrait portrait = zel::drawPortrait(zeltrain::variedPortrait(seed, size));
        const zel::FaceSet found = find(portrait.image);
        const auto truth = zel::landmarksInPixels(portrait.faces.faces[0], portrait.image);
        float best = 10, confidence = 0;
        zel::Landmarks bestPoints{};
        for (const zel::Face& face : found.faces) {
            const auto points = zel::landmarksInPixels(face, portrait.image);
            const float error = zel::landmarkError(points, truth);
            if (error < best) {
                best = error;
                bestPoints = points;
                confidence = face.confidence.value_or(0);
            }
        }
        const bool hit = best < 0.5f;
        missed += hit ? 0 : 1;
        extra += static_cast<int>(found.faces.size()) - (hit ? 1 : 0);
        if (hit) {
            errors.push_back(best);
            addErrors(groups, bestPoints, truth);
        }
        std::printf("seed %u at %d pixels: %zu found, error %.4f, confidence %.2f\n", seed, size,
                    found.faces.size(), static_cast<double>(best), static_cast<double>(confidence));
    }
    if (errors.empty()) return 1;
    double sum = 0;
    for (const float e : errors) sum += static_cast<double>(e);
    std::sort(errors.begin(), errors.end());
    std::printf(
        "%zu of %d found, %d missed, %d false faces; error: mean %.4f, median %.4f, 95%% %.4f, worst %.4f\n",
        errors.size(), count, missed, extra, sum / static_cast<double>(errors.size()),
        static_cast<double>(errors[errors.size() / 2]), static_cast<double>(errors[errors.size() * 95 / 100]),
        static_cast<double>(errors.back()));
    for (const Group& group : groups)
        std::printf("  %-8s %.4f\n", group.name, group.sum / static_cast<double>(errors.size()));
    return 0;
}
