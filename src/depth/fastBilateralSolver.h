#pragma once

#include <Eigen/Core>
#include <span>
#include <vector>

#include "depth/bilateralGrid.h"

namespace zellab {

/// The fast bilateral solver (J. T. Barron, B. Poole, "The Fast Bilateral Solver", ECCV 2016): the smoothest
/// map, as the guide's edges allow, that stays near the target where the confidence is high. It solves
///
///     (lambda (Dm - Dn B Dn) + diag(S c)) y = S (c t)
///
/// over the vertices of a bilateral grid: B its blur, S the sum over a vertex's pixels, t the target, c the
/// confidence, and Dn, Dm diagonals that make the blur bistochastic.
class FastBilateralSolver {
public:
    struct Parameters {
        float sigmaSpatial, sigmaLuma, sigmaChroma;  // cell sizes: pixels, levels, levels
        float lambda;                                // strength of the smoothness, >= 0
        int iterations;                              // of the conjugate gradient, at most
        float tolerance;                             // residual, as a share of the right side, that ends it
    };

    /// Builds the grid over a guide (see BilateralGrid) and its normalisation.
    FastBilateralSolver(const PixelsView& guide, const Parameters& parameters);

    /// @param target, confidence  one value a pixel, 0 to 1
    /// @return one value a pixel; empty where the sizes do not fit the guide's
    std::vector<float> Solve(std::span<const float> target, std::span<const float> confidence) const;

    const BilateralGrid& grid() const { return m_grid; }
    const Eigen::VectorXf& Dn() const { return m_n; }
    const Eigen::VectorXf& Dm() const { return m_m; }

private:
    Eigen::VectorXf splat(std::span<const float> values) const;
    void bistochastise();

    Parameters m_parameters;
    BilateralGrid m_grid;
    Eigen::VectorXf m_count;   // pixels of each vertex
    Eigen::VectorXf m_n, m_m;  // the diagonals
};

}  // namespace zellab
