#include "libzel/faces/faceFinder.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "libzel/faces/foundFace.h"
#include "libzel/faces/landmarkFit.h"

namespace zel {

namespace {

/// Fits below this confidence are no faces. Boxes on which many of the detector's views agree need less.
constexpr float kLeastConfidence = 0.3f;

/// Two fits whose middles lie closer than this share of the larger's pupil distance are one face.
constexpr float kSameFace = 1.2f;

struct Candidate {
    LandmarkFit fit;
    float pupils = 0;
};

bool sameFace(const Candidate& a, const Candidate& b) {
    const auto p = pupilMiddle(a.fit.points), q = pupilMiddle(b.fit.points);
    return std::hypot(p.x - q.x, p.y - q.y) < kSameFace * std::max(a.pupils, b.pupils);
}

/// Of several fits of one face the most trusted stays.
std::vector<Candidate> distinct(std::vector<Candidate> candidates) {
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const auto& a, const auto& b) { return a.fit.confidence > b.fit.confidence; });
    std::vector<Candidate> kept;
    for (const auto& candidate : candidates)
        if (std::none_of(kept.begin(), kept.end(), [&](const auto& k) { return sameFace(k, candidate); }))
            kept.push_back(candidate);
    std::stable_sort(kept.begin(), kept.end(),
                     [](const auto& a, const auto& b) { return a.pupils > b.pupils; });
    return kept;
}

}  // namespace

std::string describeFaces(const FaceSet& found) {
    const std::size_t count = found.faces.size();
    if (count == 0) return "no face found";
    std::string text =
        std::to_string(count) + (count == 1 ? " face found (confidence" : " faces found (confidence");
    const char* separator = " ";
    for (const Face& face : found.faces) {
        char number[16];
        std::snprintf(number, sizeof number, "%.2f", static_cast<double>(face.confidence.value_or(0)));
        text.append(separator).append(number);
        separator = ", ";
    }
    return text + ")";
}

FaceSet findFaces(const Image& image, FaceDetector& detector) {
    const auto luma = lumaOf(image);
    const LumaPyramid picture(luma, image.width, image.height);
    std::vector<Candidate> candidates;
    for (const FaceBox& box : detector.find(luma, image.width, image.height)) {
        Candidate candidate{fitLandmarks(picture, box), 0};
        candidate.pupils = pupilDistance(candidate.fit.points);
        if (candidate.fit.confidence >= kLeastConfidence) candidates.push_back(candidate);
    }
    FaceSet found{image.width, image.height, {}};
    for (const Candidate& face : distinct(candidates))
        found.faces.push_back(foundFace(face.fit.points, image.width, image.height, face.fit.confidence));
    return found;
}

}  // namespace zel
