#include "libzel/faces/faceMesh.h"

#include <algorithm>
#include <cmath>

#include "libzel/faces/meshParts.h"

namespace zel {

using zellab::Vector2f;

namespace {

constexpr int kSide = 192;            // samples of the square
constexpr std::size_t kPerPoint = 3;  // across, down, and depth, which nobody needs
constexpr float kGrowth = 1.5f;       // of a square or window over the points in it

constexpr NetworkOutput kMeshOutputs[] = {{"conv2d_21_213", kMeshPoints* kPerPoint}, {"conv2d_31_210", 1}};

constexpr std::size_t kFeatures = std::size_t{kFeatureChannels} * kFeatureSide * kFeatureSide;
constexpr NetworkOutput kWholeOutputs[] = {{"output_mesh_186", kMeshPoints* kPerPoint},
                                           {"p_re_lu_3_35", kFeatures}};
constexpr NetworkOutput kLipsOutputs[] = {{"conv_lips_684", 160}};
constexpr NetworkOutput kLeftEyeOutputs[] = {{"conv_left_eye_687", 142}, {"conv_left_iris_690", 10}};
constexpr NetworkOutput kRightEyeOutputs[] = {{"conv_right_eye_693", 142}, {"conv_right_iris_696", 10}};

const NetworkKind kWholeKind{"refinedMesh.onnx", {1, 3, kSide, kSide}, kWholeOutputs};

/// What is looked at closely.
struct Part {
    NetworkKind kind;
    std::span<const short> points;
    std::size_t levelLeft, levelRight;  // the line between these stands level in the window
};

const std::array<Part, 3>& parts() {
    static const std::array<int, 4> input{1, kFeatureChannels, kPartSide, kPartSide};
    static const std::array<Part, 3> all{
        {{{"refinedLips.onnx", input, kLipsOutputs}, kMeshLips, 61, 291},
         {{"refinedLeftEye.onnx", input, kLeftEyeOutputs}, kMeshLeftEye, 33, 133},
         {{"refinedRightEye.onnx", input, kRightEyeOutputs}, kMeshRightEye, 362, 263}}};
    return all;
}

/// A turned rectangle about points.
struct Bounds {
    Vector2f middle;  // in the points' own frame
    float width, height;
    Vector2f along, down;  // unit vectors of its sides
};

/// The bounds whose upper side runs like `level`.
template <typename Points>
Bounds boundsOf(const Points& points, Vector2f level) {
    const float length = std::hypot(level.x, level.y);
    const Vector2f along = length > 0 ? level * (1 / length) : Vector2f{1, 0}, down{-along.y, along.x};
    Vector2f low{1e30f, 1e30f}, high{-1e30f, -1e30f};
    for (const Vector2f p : points) {
        const Vector2f turned{p.x * along.x + p.y * along.y, p.x * down.x + p.y * down.y};
        low = {std::min(low.x, turned.x), std::min(low.y, turned.y)};
        high = {std::max(high.x, turned.x), std::max(high.y, turned.y)};
    }
    const Vector2f middle = (low + high) * 0.5f;
    return {along * middle.x + down * middle.y, high.x - low.x, high.y - low.y, along, down};
}

/// The points as shares of the square.
void readPoints(const std::vector<float>& numbers, std::array<Vector2f, kMeshPoints>& points) {
    for (std::size_t i = 0; i < kMeshPoints; ++i)
        points[i] = Vector2f{numbers[kPerPoint * i], numbers[kPerPoint * i + 1]} * (1.0f / kSide);
}

void place(FaceMesh& mesh, const TurnedSquare& square) {
    for (Vector2f& p : mesh.points) p = square.at(p);
    if (mesh.irises)
        for (Vector2f& p : *mesh.irises) p = square.at(p);
}

/// Places a part's points anew, all as shares of the square. The outputs count in 64ths of the part's window.
/// @return the iris's middle, the first of its points, or the window's for the lips
Vector2f refine(const Part& part, Network& network, const std::vector<float>& features,
                const FaceMesh& coarse, FaceMesh& mesh) {
    std::vector<Vector2f> known;
    for (const short number : part.points) known.push_back(coarse.points[static_cast<std::size_t>(number)]);
    const Bounds bounds = boundsOf(known, coarse.points[part.levelRight] - coarse.points[part.levelLeft]);
    const Vector2f right = bounds.along * (kGrowth * bounds.width),
                   down = bounds.down * (kGrowth * bounds.height);
    const Vector2f origin = bounds.middle - (right + down) * 0.5f;
    constexpr float kShares = kFeatureSide;
    const auto outputs =
        network.run(partOfFeatures(features, origin * kShares, right * kShares, down * kShares));
    const auto at = [&](const std::vector<float>& numbers, std::size_t i) {
        constexpr float kUnit = 1 / 64.0f;
        return origin + right * (numbers[2 * i] * kUnit) + down * (numbers[2 * i + 1] * kUnit);
    };
    for (std::size_t i = 0; i < part.points.size(); ++i)
        mesh.points[static_cast<std::size_t>(part.points[i])] = at(outputs[0], i);
    return outputs.size() > 1 ? at(outputs[1], 0) : bounds.middle;
}

}  // namespace

const NetworkKind kFaceMeshKind{"faceMesh.onnx", {1, 3, kSide, kSide}, kMeshOutputs};

TurnedSquare FaceMesh::square() const {
    const Bounds bounds = boundsOf(points, points[263] - points[33]);
    return {bounds.middle, kGrowth * std::max(bounds.width, bounds.height),
            std::atan2(bounds.along.y, bounds.along.x)};
}

bool FaceMesh::isFinite() const {
    const auto finite = [](Vector2f p) { return std::isfinite(p.x) && std::isfinite(p.y); };
    return std::all_of(points.begin(), points.end(), finite) &&
           (!irises || std::all_of(irises->begin(), irises->end(), finite));
}

FaceMesh fitMesh(Network& network, const ColourPyramid& picture, const TurnedSquare& square) {
    const auto outputs = network.run(picture.cut(square, kSide, 1 / 255.0f, 0));
    FaceMesh mesh;
    readPoints(outputs[0], mesh.points);
    place(mesh, square);
    mesh.presence = sigmoid(outputs[1][0]);
    return mesh;
}

std::vector<float> partOfFeatures(const std::vector<float>& features, Vector2f origin, Vector2f right,
                                  Vector2f down) {
    constexpr auto kPlane = std::size_t{kFeatureSide} * kFeatureSide,
                   kOutPlane = std::size_t{kPartSide} * kPartSide;
    constexpr float kLimit = kFeatureSide;
    std::vector<float> part(kFeatureChannels * kOutPlane, 0.0f);
    for (int i = 0; i < kPartSide * kPartSide; ++i) {
        const int column = i % kPartSide, row = i / kPartSide;
        // Of the sample's middle, counted from the middle of the first feature.
        const Vector2f share{(static_cast<float>(column) + 0.5f) / kPartSide,
                             (static_cast<float>(row) + 0.5f) / kPartSide};
        const Vector2f p = origin + right * share.x + down * share.y - Vector2f{0.5f, 0.5f};
        if (!(p.x > -1 && p.y > -1 && p.x < kLimit && p.y < kLimit)) continue;
        const int left = static_cast<int>(std::floor(p.x)), top = static_cast<int>(std::floor(p.y));
        for (int corner = 0; corner < 4; ++corner) {
            const int x = left + corner % 2, y = top + corner / 2;
            if (x < 0 || y < 0 || x >= kFeatureSide || y >= kFeatureSide) continue;
            const float weight =
                (1 - std::abs(p.x - static_cast<float>(x))) * (1 - std::abs(p.y - static_cast<float>(y)));
            const float* in = features.data() + y * kFeatureSide + x;
            for (std::size_t k = 0; k < kFeatureChannels; ++k)
                part[k * kOutPlane + static_cast<std::size_t>(i)] += weight * in[k * kPlane];
        }
    }
    return part;
}

std::optional<RefinedMesh> RefinedMesh::load(const std::string& folder, std::string& reason) {
    RefinedMesh mesh;
    mesh.m_whole = Network::load(folder, kWholeKind, reason);
    if (!mesh.m_whole) return std::nullopt;
    for (std::size_t i = 0; i < parts().size(); ++i) {
        mesh.m_parts[i] = Network::load(folder, parts()[i].kind, reason);
        if (!mesh.m_parts[i]) return std::nullopt;
    }
    return mesh;
}

FaceMesh RefinedMesh::fit(const ColourPyramid& picture, const TurnedSquare& square) const {
    const auto outputs = m_whole->run(picture.cut(square, kSide, 1 / 255.0f, 0));
    FaceMesh coarse;
    readPoints(outputs[0], coarse.points);
    FaceMesh mesh = coarse;
    std::array<Vector2f, 3> middles;
    for (std::size_t i = 0; i < parts().size(); ++i)
        middles[i] = refine(parts()[i], *m_parts[i], outputs[1], coarse, mesh);
    mesh.irises = {middles[1], middles[2]};
    place(mesh, square);
    return mesh;
}

}  // namespace zel
