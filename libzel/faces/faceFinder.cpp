#include "libzel/faces/faceFinder.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

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

zellab::Vector2f middleOf(const Landmarks& points) {
    return {0.5f * (points[24].x + points[70].x), 0.5f * (points[24].y + points[70].y)};
}

bool sameFace(const Candidate& a, const Candidate& b) {
    const auto p = middleOf(a.fit.points), q = middleOf(b.fit.points);
    return std::hypot(p.x - q.x, p.y - q.y) < kSameFace * std::max(a.pupils, b.pupils);
}

/// From brow to chin and from contour to contour; above the brows as much again as from the eyes to them.
std::array<float, 4> rectOf(const std::array<zellab::Vector2f, kLandmarks>& points) {
    float left = points[0].x, right = left, top = points[0].y, bottom = top;
    for (const auto& p : points) {
        left = std::min(left, p.x);
        right = std::max(right, p.x);
        top = std::min(top, p.y);
        bottom = std::max(bottom, p.y);
    }
    const float eyes = 0.5f * (points[20].y + points[66].y);
    const float brows = std::min(points[35].y, points[81].y);
    top = std::min(top, 2 * brows - eyes);
    return {left, top, right - left, bottom - top};
}

Face asFace(const Landmarks& points, int width, int height) {
    Face face;
    // A face at the edge may reach beyond the picture, as far as face data may tell.
    const auto share = [](float pixel, int side) {
        return std::clamp(pixel / static_cast<float>(side), -1.0f, 2.0f);
    };
    for (std::size_t i = 0; i < kLandmarks; ++i)
        face.points[i] = {share(points[i].x, width), share(points[i].y, height)};
    face.rect = rectOf(face.points);
    return face;
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
    for (const Candidate& face : distinct(candidates)) {
        found.faces.push_back(asFace(face.fit.points, image.width, image.height));
        found.faces.back().confidence = face.fit.confidence;
    }
    return found;
}

}  // namespace zel
