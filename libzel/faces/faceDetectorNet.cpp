#include "libzel/faces/faceDetectorNet.h"

#include <algorithm>
#include <cmath>

#include "frame/processorCount.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zel {

using zellab::Vector2f;

namespace {

constexpr float kLeastScore = 0.5f;

// Of two boxes: the share of their union that they have in common.
constexpr float kMuchAlike = 0.5f;
constexpr float kAlmostAsSure = 0.6f;  // of the surest's score
/// The share of the smaller box that is common to two boxes of one face.
constexpr float kSameFace = 0.3f;

/// A picture shows fewer; a network whose weights are damaged may tell of a face at every anchor.
constexpr std::size_t kMostDetections = 4096, kMostFaces = 1024;

constexpr NetworkOutput kOutputs[] = {{"regressors_175", detector::kAnchors* detector::kPerAnchor},
                                      {"classificators_174", detector::kAnchors}};

float areaOf(const DetectedFace& face) {
    return face.width * face.height;
}

float commonArea(const DetectedFace& a, const DetectedFace& b) {
    const auto common = [](float p, float sizeP, float q, float sizeQ) {
        const float low = std::max(p - 0.5f * sizeP, q - 0.5f * sizeQ);
        return std::max(0.0f, std::min(p + 0.5f * sizeP, q + 0.5f * sizeQ) - low);
    };
    return common(a.centre.x, a.width, b.centre.x, b.width) *
           common(a.centre.y, a.height, b.centre.y, b.height);
}

/// Whether an eye, the nose or the mouth lies beyond the window, but in the picture.
bool isCut(const DetectedFace& face, std::span<const Vector2f> sharesOfWindow, int width, int height) {
    constexpr std::size_t kInner = 4;
    for (std::size_t i = 0; i < kInner; ++i) {
        const Vector2f in = sharesOfWindow[i], p = face.marks[i];
        const bool seen = in.x >= 0 && in.y >= 0 && in.x <= 1 && in.y <= 1;
        const bool there =
            p.x >= 0 && p.y >= 0 && p.x <= static_cast<float>(width) && p.y <= static_cast<float>(height);
        if (!seen && there) return true;
    }
    return false;
}

}  // namespace

const NetworkKind kFaceDetectorKind{"faceDetector.onnx", {1, 3, detector::kSide, detector::kSide}, kOutputs};

TurnedSquare DetectedFace::square() const {
    constexpr float kGrowth = 1.5f;
    const Vector2f eyes = marks[1] - marks[0];
    return {centre, kGrowth * std::max(width, height), std::atan2(eyes.y, eyes.x)};
}

namespace detector {

Vector2f anchorAt(std::size_t anchor) {
    struct Grid {
        std::size_t cells, perCell;
    };
    constexpr Grid kFine{16, 2}, kCoarse{8, 6};
    constexpr std::size_t kFineAnchors = kFine.cells * kFine.cells * kFine.perCell;
    static_assert(kFineAnchors + kCoarse.cells * kCoarse.cells * kCoarse.perCell == kAnchors);
    const bool fine = anchor < kFineAnchors;
    const Grid grid = fine ? kFine : kCoarse;
    const std::size_t cell = (fine ? anchor : anchor - kFineAnchors) / grid.perCell;
    const auto middle = [&](std::size_t i) {
        return (static_cast<float>(i) + 0.5f) / static_cast<float>(grid.cells);
    };
    return {middle(cell % grid.cells), middle(cell / grid.cells)};
}

std::vector<DetectedFace> decode(std::span<const float> boxes, std::span<const float> scores,
                                 const TurnedSquare& window, int width, int height) {
    constexpr float kSample = 1.0f / kSide;
    std::vector<DetectedFace> faces;
    for (std::size_t i = 0; i < kAnchors; ++i) {
        DetectedFace face;
        face.score = sigmoid(scores[i]);
        if (!(face.score >= kLeastScore)) continue;
        const float* row = boxes.data() + kPerAnchor * i;
        const auto share = [&](const float* at) { return anchorAt(i) + Vector2f{at[0], at[1]} * kSample; };
        face.centre = window.at(share(row));
        face.width = row[2] * kSample * window.side;
        face.height = row[3] * kSample * window.side;
        std::array<Vector2f, 6> shares;
        for (std::size_t k = 0; k < shares.size(); ++k) {
            shares[k] = share(row + 4 + 2 * k);
            face.marks[k] = window.at(shares[k]);
        }
        if (face.width > 0 && face.height > 0 && face.square().sound() && !isCut(face, shares, width, height))
            faces.push_back(face);
    }
    return faces;
}

std::vector<DetectedFace> merge(std::vector<DetectedFace> faces) {
    std::stable_sort(faces.begin(), faces.end(),
                     [](const auto& a, const auto& b) { return a.score > b.score; });
    if (faces.size() > kMostDetections) faces.resize(kMostDetections);
    std::vector<DetectedFace> merged;
    while (!faces.empty() && merged.size() < kMostFaces) {
        const DetectedFace best = faces.front();
        DetectedFace mean;
        float weight = 0;
        for (const DetectedFace& face : faces) {
            const float common = commonArea(best, face);
            const bool alike = common > kMuchAlike * (areaOf(best) + areaOf(face) - common);
            if (!alike || face.score < kAlmostAsSure * best.score) continue;
            weight += face.score;
            // Moved towards it by its share of the weight so far.
            const float share = face.score / weight;
            mean.centre = zellab::mix(mean.centre, face.centre, share);
            mean.width += (face.width - mean.width) * share;
            mean.height += (face.height - mean.height) * share;
            for (std::size_t k = 0; k < mean.marks.size(); ++k)
                mean.marks[k] = zellab::mix(mean.marks[k], face.marks[k], share);
        }
        mean.score = best.score;
        merged.push_back(mean);
        std::erase_if(faces, [&](const DetectedFace& face) {
            return commonArea(best, face) >= kSameFace * std::min(areaOf(best), areaOf(face));
        });
    }
    return merged;
}

}  // namespace detector

std::vector<DetectedFace> detectFaces(Network& network, const ColourPyramid& picture,
                                      const std::vector<TurnedSquare>& windows, float turn) {
    constexpr float kGain = 2 / 255.0f, kOffset = -1;
    std::vector<std::vector<DetectedFace>> seen(windows.size());
    zellab::runTasks(static_cast<int>(windows.size()), zellab::ProcessorCount(), [&](int i) {
        const auto index = static_cast<std::size_t>(i);
        TurnedSquare window = windows[index];
        window.turn = turn;
        const auto outputs = network.run(picture.cut(window, detector::kSide, kGain, kOffset));
        seen[index] = detector::decode(outputs[0], outputs[1], window, picture.width(), picture.height());
    });
    std::vector<DetectedFace> all;
    for (const auto& faces : seen) all.insert(all.end(), faces.begin(), faces.end());
    return all;
}

}  // namespace zel
