#include "depth/fastBilateralSolver.h"

#include <algorithm>

namespace zellab {

namespace {

/// Rounds of the normalisation, as published; the imbalance shrinks by more than half in each.
constexpr int kBistochasticRounds = 10;

/// The start value: the target, weighed by the confidence and spread over the grid, where it fills what is
/// doubted from its surroundings of the same colour. The gradient's few iterations reach only as many
/// vertices far; from here they need not go farther. kOwnShare, as a confidence, lets the vertex's own target
/// stand where nothing sure is near.
constexpr int kSpreadRounds = 8;
constexpr float kOwnShare = 1e-3f;
constexpr float kLargestRowSum = 20.0f;  // of the blur: keeps the sums in range

Eigen::VectorXf startValue(const BilateralGrid::Matrix& blur, const Eigen::VectorXf& weighted,
                           const Eigen::VectorXf& weights, const Eigen::VectorXf& target,
                           const Eigen::VectorXf& count) {
    Eigen::Matrix<float, Eigen::Dynamic, 2, Eigen::RowMajor> sums(count.size(), 2);
    sums.col(0) = weighted + kOwnShare * target;
    sums.col(1) = weights + kOwnShare * count;
    Eigen::Matrix<float, Eigen::Dynamic, 2, Eigen::RowMajor> spread(count.size(), 2);
    for (int i = 0; i < kSpreadRounds; ++i) {
        spread.noalias() = blur * sums;
        sums = spread / kLargestRowSum;
    }
    return sums.col(0).cwiseQuotient(sums.col(1));
}

/// Error of a row of A y as a share of its largest term: some ten terms, each rounded to 24 bits.
constexpr float kRounding = 1e-6f;

/// Solves A y = b from the start value in y by conjugate gradients, preconditioned by A's diagonal.
void conjugateGradient(const BilateralGrid::Matrix& A, const Eigen::VectorXf& b, int iterations,
                       float tolerance, Eigen::VectorXf& y) {
    // A vertex without neighbours and without confidence has an empty row, where the start value stays.
    const Eigen::VectorXf diagonal = A.diagonal();
    const Eigen::VectorXf inverse = (diagonal.array() > 0.0f).select(diagonal.cwiseInverse(), 0.0f);
    // Where nothing is sure, b is 0 and A singular: below what rounding leaves of A y there is only noise to
    // follow, and it leads anywhere.
    const float noise = kRounding * diagonal.cwiseProduct(y).norm();
    const float enough = std::max(tolerance * b.norm(), noise);
    Eigen::VectorXf r = b - A * y, Ap(b.size());
    Eigen::VectorXf z = inverse.cwiseProduct(r), p = z;
    float rz = r.dot(z);
    for (int i = 0; i < iterations && r.norm() > enough; ++i) {
        Ap.noalias() = A * p;
        const float curvature = p.dot(Ap);
        if (!(curvature > 0.0f)) return;  // rounding has eaten what was left to gain
        const float length = rz / curvature;
        y += length * p;
        r -= length * Ap;
        z = inverse.cwiseProduct(r);
        const float next = r.dot(z);
        p = z + (next / rz) * p;
        rz = next;
    }
}

}  // namespace

FastBilateralSolver::FastBilateralSolver(const PixelsView& guide, const Parameters& parameters)
    : m_parameters(parameters),
      m_grid(guide, {parameters.sigmaSpatial, parameters.sigmaLuma, parameters.sigmaChroma}) {
    m_count = Eigen::VectorXf::Zero(m_grid.vertices());
    for (const int vertex : m_grid.vertexOfPixel()) m_count[vertex] += 1.0f;
    bistochastise();
}

void FastBilateralSolver::bistochastise() {
    const BilateralGrid::Matrix& B = m_grid.blur();
    m_n = Eigen::VectorXf::Ones(m_grid.vertices());
    Eigen::VectorXf blurred = B * m_n;
    for (int i = 0; i < kBistochasticRounds; ++i) {
        m_n = (m_n.array() * m_count.array() / blurred.array()).sqrt();
        blurred.noalias() = B * m_n;
    }
    // The rounds end before n (B n) is m to the last bit. This m makes the rows of Dn B Dn / Dm sum to one
    // whatever is left over, so that a constant map costs nothing.
    m_m = m_n.cwiseProduct(blurred);
}

Eigen::VectorXf FastBilateralSolver::splat(std::span<const float> values) const {
    Eigen::VectorXf sums = Eigen::VectorXf::Zero(m_grid.vertices());
    const std::vector<int>& vertex = m_grid.vertexOfPixel();
    for (std::size_t i = 0; i < values.size(); ++i) sums[vertex[i]] += values[i];
    return sums;
}

std::vector<float> FastBilateralSolver::Solve(std::span<const float> target,
                                              std::span<const float> confidence) const {
    const std::vector<int>& vertex = m_grid.vertexOfPixel();
    if (target.size() != vertex.size() || confidence.size() != vertex.size()) return {};
    std::vector<float> weighted(target.size());
    for (std::size_t i = 0; i < target.size(); ++i) weighted[i] = target[i] * confidence[i];
    const Eigen::VectorXf b = splat(weighted);

    const float lambda = m_parameters.lambda;
    BilateralGrid::Matrix A = m_grid.blur();
    for (int row = 0; row < A.outerSize(); ++row)
        for (BilateralGrid::Matrix::InnerIterator entry(A, row); entry; ++entry)
            entry.valueRef() *= -lambda * m_n[row] * m_n[entry.col()];
    const Eigen::VectorXf sure = splat(confidence);
    A.diagonal() += lambda * m_m + sure;

    Eigen::VectorXf y = startValue(m_grid.blur(), b, sure, splat(target), m_count);
    conjugateGradient(A, b, m_parameters.iterations, m_parameters.tolerance, y);
    std::vector<float> result(vertex.size());
    for (std::size_t i = 0; i < result.size(); ++i) result[i] = y[vertex[i]];
    return result;
}

}  // namespace zellab
