#include "libzel/faces/landmarkFit.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "libzel/faces/chin.h"
#include "libzel/faces/landmarkModel.h"
#include "libzel/faces/pupils.h"

namespace zel {

namespace {

/// Where the pupils' middle lies in the detector's box, and their distance, as shares of its side: means over
/// two hundred drawn faces.
constexpr float kMiddleX = 0.496f, kMiddleY = 0.424f, kPupils = 0.386f;

/// Fits above this confidence need no second look at eyes and chin.
constexpr float kSure = 0.7f;

/// A start beside the box's own: shift in pupil distances, and growth.
struct Start {
    float x, y, growth;
};
constexpr Start kStarts[] = {
    {0, 0, 1}, {0.08f, 0, 1.1f}, {-0.08f, 0, 1.1f}, {0, 0.08f, 0.92f}, {0, -0.08f, 0.92f}};

Landmarks placed(const FaceBox& box, const Start& start) {
    const float unit = box.side * kPupils, c = std::cos(box.turn), s = std::sin(box.turn);
    // From the box's middle, in its own frame.
    const float x = box.side * (kMiddleX - 0.5f) + unit * start.x,
                y = box.side * (kMiddleY - 0.5f) + unit * start.y;
    const float middleX = box.x + 0.5f * box.side, middleY = box.y + 0.5f * box.side;
    const Similarity toPicture{unit * start.growth * c, unit * start.growth * s, middleX + c * x - s * y,
                               middleY + s * x + c * y};
    return moved(landmarkModel().mean, toPicture);
}

float middleOf(std::vector<float> values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// The median of each coordinate: one start that went astray has no say.
Landmarks agreed(const std::vector<Landmarks>& fits) {
    Landmarks result;
    for (std::size_t i = 0; i < kLandmarks; ++i) {
        std::vector<float> xs, ys;
        for (const auto& fit : fits) {
            xs.push_back(fit[i].x);
            ys.push_back(fit[i].y);
        }
        result[i] = {middleOf(xs), middleOf(ys)};
    }
    return result;
}

float trustIn(const LumaPyramid& picture, const Landmarks& points) {
    const LandmarkModel& model = landmarkModel();
    const Similarity toPicture = aligning(model.mean, points);
    const auto descriptor = describeFace(picture, toPicture, moved(points, toPicture.inverse()), kTrustSight);
    return std::clamp(model.trust(descriptor)[0], 0.0f, 1.0f);
}

}  // namespace

LandmarkFit fitLandmarks(const LumaPyramid& picture, const FaceBox& box) {
    const LandmarkModel& model = landmarkModel();
    std::vector<Landmarks> fits;
    for (const Start& start : kStarts) {
        Landmarks points = placed(box, start);
        for (std::size_t step = 0; step < model.steps.size(); ++step) takeStep(model, step, picture, points);
        fits.push_back(points);
    }
    LandmarkFit fit{agreed(fits), 0};
    fit.confidence = trustIn(picture, fit.points);
    if (fit.confidence < kSure) {
        settlePupils(picture, fit.points);
        settleChin(picture, fit.points);
    }
    return fit;
}

}  // namespace zel
