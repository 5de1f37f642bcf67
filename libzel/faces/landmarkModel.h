#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "libzel/faces/faceDescriptor.h"

namespace zel {

/// Ways a face may differ from the mean: four of them move, turn and scale it.
constexpr std::size_t kModes = 28, kPlacingModes = 4;

/// Rows of whole numbers with a factor each: a step's change of the modes by the descriptor.
struct LinearMap {
    std::size_t rows = 0;
    std::vector<float> bias;           // one a row
    std::vector<float> factor;         // one a row
    std::vector<std::int8_t> weights;  // rows of kDescriptorSize

    std::vector<float> operator()(const std::vector<float>& descriptor) const;
};

/// What the fit has learnt from drawn portraits.
struct LandmarkModel {
    Landmarks mean{};                       // pupils one unit apart, about their middle
    std::vector<std::vector<float>> modes;  // kModes orthonormal rows of x0 y0 x1 y1 ...
    std::vector<float> deviation;           // of each mode, over the people
    std::vector<LinearMap> steps;           // one per entry of kSights
    LinearMap trust;                        // one row: about 1 for a good fit, 0 for none
};

/// The sights of the steps, from coarse to fine, and that of the judgement.
constexpr Sight kSights[] = {{20, 7}, {24, 6}, {30, 5}, {36, 5}, {42, 4}};
constexpr Sight kTrustSight = {28, 5};

/// Adds the modes to the landmarks.
void addModes(const LandmarkModel& model, const std::vector<float>& amounts, Landmarks& points);
/// How much of each mode lies in points - mean.
std::vector<float> modesOf(const LandmarkModel& model, const Landmarks& points);

/// One step: looks, moves the landmarks, and keeps them a face. In pixels of the picture.
void takeStep(const LandmarkModel& model, std::size_t step, const LumaPyramid& picture, Landmarks& points);

/// The model as lines of text and back.
std::string encodeModel(const LandmarkModel& model);
LandmarkModel decodeModel(const char* const* lines, std::size_t count);

/// The model built into the program.
const LandmarkModel& landmarkModel();

}  // namespace zel
