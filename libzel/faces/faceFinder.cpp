#include "libzel/faces/faceFinder.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

#include "libzel/faces/colourPyramid.h"
#include "libzel/faces/foundFace.h"
#include "libzel/faces/guessedGroups.h"
#include "libzel/faces/landmarkFit.h"
#include "libzel/faces/turnedLuma.h"

namespace zel {

namespace {

/// Fits below this confidence are no faces. Boxes on which many of the detector's views agree need less.
constexpr float kLeastConfidence = 0.3f;

/// Fits below this confidence must also have the colour of skin, where there is colour: red above blue by this
/// share of red. (The least that was seen of true faces is 0.2, the most of such false ones 0.15.)
constexpr float kSure = 0.5f, kLeastRed = 0.17f;
constexpr float kColourless = 0.02f;

/// Nor are they faces beside a sure one that is larger by this: false faces are small.
constexpr float kMuchLarger = 3;

/// Two fits whose middles lie closer than this share of the larger's pupil distance are one face.
constexpr float kSameFace = 1.2f;

/// The detector sees faces that lean by less than some 15 degrees; it looks at the picture turned by so much to
/// either side too.
constexpr float kLean = 25 * std::numbers::pi_v<float> / 180;

struct Candidate {
    LandmarkFit fit;
    float pupils = 0;
};

bool sameFace(const Candidate& a, const Candidate& b) {
    const auto p = pupilMiddle(a.fit.points), q = pupilMiddle(b.fit.points);
    return std::hypot(p.x - q.x, p.y - q.y) < kSameFace * std::max(a.pupils, b.pupils);
}

/// How far red lies above blue in the mean colour about the landmarks, as a share of red; without a value where
/// the place has no colour or lies beyond the picture.
std::optional<float> redness(const Image& image, const Landmarks& points) {
    double red = 0, green = 0, blue = 0;
    for (const auto& p : points) {
        if (!(p.x >= 0 && p.y >= 0 && p.x < static_cast<float>(image.width) &&
              p.y < static_cast<float>(image.height)))
            continue;
        const auto place = static_cast<std::size_t>(p.y) * static_cast<std::size_t>(image.width) +
                           static_cast<std::size_t>(p.x);
        const unsigned char* pixel = image.rgba.data() + 4 * place;
        red += pixel[0];
        green += pixel[1];
        blue += pixel[2];
    }
    const double most = std::max({red, green, blue}), least = std::min({red, green, blue});
    if (most - least <= kColourless * most) return std::nullopt;
    return static_cast<float>((red - blue) / std::max(red, 1.0));
}

bool isFace(const Image& image, const LandmarkFit& fit) {
    if (fit.confidence >= kSure || fit.confidence < kLeastConfidence) return fit.confidence >= kSure;
    return redness(image, fit.points).value_or(kLeastRed) >= kLeastRed;
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

/// Where the detector sees faces, upright or leaning to either side.
std::vector<FaceBox> boxesOf(const std::vector<unsigned char>& luma, const LumaPyramid& picture,
                             FaceDetector& detector) {
    std::vector<FaceBox> boxes = detector.find(luma, picture.width(), picture.height());
    for (const float lean : {-kLean, kLean}) {
        const TurnedLuma turned(picture, lean);
        for (const FaceBox& box : detector.find(turned.luma(), turned.width(), turned.height()))
            boxes.push_back(turned.inPicture(box));
    }
    return boxes;
}

}  // namespace

FaceSet findFaces(const Image& image, FaceDetector& detector) {
    const auto luma = lumaOf(image);
    const LumaPyramid picture(luma, image.width, image.height);
    std::vector<Candidate> candidates;
    for (const FaceBox& box : boxesOf(luma, picture, detector)) {
        Candidate candidate{fitLandmarks(picture, box), 0};
        candidate.pupils = pupilDistance(candidate.fit.points);
        if (isFace(image, candidate.fit)) candidates.push_back(candidate);
    }
    std::erase_if(candidates, [&, all = candidates](const Candidate& weak) {
        return weak.fit.confidence < kSure && std::any_of(all.begin(), all.end(), [&](const Candidate& face) {
                   return face.fit.confidence >= kSure && face.pupils > kMuchLarger * weak.pupils;
               });
    });
    FaceSet found{image.width, image.height, {}};
    if (candidates.empty()) return found;
    const ColourPyramid colours({image.rgba.data(), image.width, image.height});
    for (const Candidate& face : distinct(candidates)) {
        found.faces.push_back(foundFace(face.fit.points, image.width, image.height, face.fit.confidence));
        found.faces.back().guessed = guessedGroups(colours, face.fit.points);
    }
    return found;
}

}  // namespace zel
