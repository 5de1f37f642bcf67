#include "libzel/faces/landmarkModel.h"

#include <algorithm>

namespace zel {

namespace {

/// Faces farther from the mean than this many deviations are moved back to it.
constexpr float kFarthest = 2.8f;

}  // namespace

std::vector<float> LinearMap::operator()(const std::vector<float>& descriptor) const {
    std::vector<float> result(rows);
    for (std::size_t r = 0; r < rows; ++r) {
        const std::int8_t* row = weights.data() + r * kDescriptorSize;
        float sum = 0;
        for (std::size_t i = 0; i < kDescriptorSize; ++i) sum += descriptor[i] * static_cast<float>(row[i]);
        result[r] = bias[r] + factor[r] * sum;
    }
    return result;
}

void addModes(const LandmarkModel& model, const std::vector<float>& amounts, Landmarks& points) {
    for (std::size_t m = 0; m < kModes; ++m)
        for (std::size_t i = 0; i < kLandmarks; ++i) {
            points[i].x += amounts[m] * model.modes[m][2 * i];
            points[i].y += amounts[m] * model.modes[m][2 * i + 1];
        }
}

std::vector<float> modesOf(const LandmarkModel& model, const Landmarks& points) {
    std::vector<float> amounts(kModes, 0.0f);
    for (std::size_t m = 0; m < kModes; ++m)
        for (std::size_t i = 0; i < kLandmarks; ++i)
            amounts[m] += (points[i].x - model.mean[i].x) * model.modes[m][2 * i] +
                          (points[i].y - model.mean[i].y) * model.modes[m][2 * i + 1];
    return amounts;
}

void takeStep(const LandmarkModel& model, std::size_t step, const LumaPyramid& picture, Landmarks& points) {
    const Similarity toPicture = aligning(model.mean, points);
    Landmarks upright = moved(points, toPicture.inverse());
    addModes(model, model.steps[step](describeFace(picture, toPicture, upright, kSights[step])), upright);

    auto amounts = modesOf(model, upright);
    for (std::size_t m = kPlacingModes; m < kModes; ++m)
        amounts[m] = std::clamp(amounts[m], -kFarthest * model.deviation[m], kFarthest * model.deviation[m]);
    upright = model.mean;
    addModes(model, amounts, upright);
    points = moved(upright, toPicture);
}

}  // namespace zel
