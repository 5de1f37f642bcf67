#include "shapeModes.h"

#include <cmath>
#include <random>

namespace zeltrain {

namespace {

using zel::aligning;
using zel::kLandmarks;
using zel::kModes;
using zel::kPlacingModes;
using zel::Landmarks;
using zel::moved;

using Row = std::vector<double>;
constexpr std::size_t kNumbers = 2 * kLandmarks;

Landmarks mirrored(const Landmarks& face) {
    Landmarks result;
    for (std::size_t i = 0; i < kLandmarks; ++i) {
        const auto& p = face[zel::mirrorOrder()[i]];
        result[i] = {-p.x, p.y};
    }
    return result;
}

/// Pupils to (-0.5, 0) and (0.5, 0).
Landmarks pupilsInPlace(const Landmarks& face) {
    const auto left = face[24], right = face[70];
    const float dx = right.x - left.x, dy = right.y - left.y;
    const zel::Similarity away{dx, dy, 0.5f * (left.x + right.x), 0.5f * (left.y + right.y)};
    return moved(face, away.inverse());
}

Landmarks meanOf(const std::vector<Landmarks>& faces) {
    Landmarks mean{};
    const float share = 1.0f / static_cast<float>(faces.size());
    for (const auto& face : faces)
        for (std::size_t i = 0; i < kLandmarks; ++i) {
            mean[i].x += share * face[i].x;
            mean[i].y += share * face[i].y;
        }
    return mean;
}

/// Each face and its mirror image.
std::vector<Landmarks> uprightPairs(const std::vector<Landmarks>& faces) {
    std::vector<Landmarks> upright;
    for (const auto& face : faces) {
        upright.push_back(pupilsInPlace(face));
        upright.push_back(mirrored(upright.back()));
    }
    return upright;
}

double dot(const Row& a, const Row& b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
    return sum;
}

/// Takes the earlier rows out of `row` and brings it to length 1.
void orthonormalise(Row& row, const std::vector<Row>& rows, std::size_t count) {
    for (int twice = 0; twice < 2; ++twice)
        for (std::size_t r = 0; r < count; ++r) {
            const double share = dot(row, rows[r]);
            for (std::size_t i = 0; i < row.size(); ++i) row[i] -= share * rows[r][i];
        }
    const double length = std::sqrt(dot(row, row));
    for (double& v : row) v /= length;
}

/// Scaling, turning and shifting the mean face.
std::vector<Row> placingModes(const Landmarks& mean) {
    std::vector<Row> rows(kPlacingModes, Row(kNumbers, 0.0));
    for (std::size_t i = 0; i < kLandmarks; ++i) {
        rows[0][2 * i] = 1;
        rows[1][2 * i + 1] = 1;
        rows[2][2 * i] = mean[i].x;
        rows[2][2 * i + 1] = mean[i].y;
        rows[3][2 * i] = -mean[i].y;
        rows[3][2 * i + 1] = mean[i].x;
    }
    for (std::size_t r = 0; r < rows.size(); ++r) orthonormalise(rows[r], rows, r);
    return rows;
}

std::vector<Row> covariance(const std::vector<Landmarks>& faces, const Landmarks& mean) {
    std::vector<Row> matrix(kNumbers, Row(kNumbers, 0.0));
    Row d(kNumbers);
    for (const auto& face : faces) {
        for (std::size_t i = 0; i < kLandmarks; ++i) {
            d[2 * i] = face[i].x - mean[i].x;
            d[2 * i + 1] = face[i].y - mean[i].y;
        }
        for (std::size_t i = 0; i < kNumbers; ++i)
            for (std::size_t j = 0; j < kNumbers; ++j)
                matrix[i][j] += d[i] * d[j] / static_cast<double>(faces.size());
    }
    return matrix;
}

/// Strongest modes of the covariance that change the face beyond its placing, by repeated multiplication.
std::vector<Row> strongestModes(const std::vector<Row>& matrix, std::vector<Row> modes) {
    constexpr int kRounds = 300;
    std::mt19937 random(1);
    for (std::size_t m = kPlacingModes; m < kModes; ++m) {
        modes.emplace_back(kNumbers);
        for (double& v : modes.back()) v = static_cast<double>(random()) / 4294967296.0 - 0.5;
    }
    for (int round = 0; round < kRounds; ++round)
        for (std::size_t m = kPlacingModes; m < kModes; ++m) {
            Row next(kNumbers);
            for (std::size_t i = 0; i < kNumbers; ++i) next[i] = dot(matrix[i], modes[m]);
            orthonormalise(next, modes, m);
            modes[m] = next;
        }
    return modes;
}

}  // namespace

Landmarks meanShape(const std::vector<Landmarks>& faces) {
    return meanOf(uprightPairs(faces));
}

void learnShape(const std::vector<Landmarks>& faces, zel::LandmarkModel& model) {
    auto upright = uprightPairs(faces);
    model.mean = meanOf(upright);
    for (auto& face : upright) face = moved(face, aligning(face, model.mean));

    const auto matrix = covariance(upright, model.mean);
    const auto modes = strongestModes(matrix, placingModes(model.mean));
    model.modes.clear();
    model.deviation.clear();
    for (const Row& mode : modes) {
        model.modes.emplace_back(mode.begin(), mode.end());
        Row image(kNumbers);
        for (std::size_t i = 0; i < kNumbers; ++i) image[i] = dot(matrix[i], mode);
        model.deviation.push_back(static_cast<float>(std::sqrt(std::max(0.0, dot(image, mode)))));
    }
}

}  // namespace zeltrain
