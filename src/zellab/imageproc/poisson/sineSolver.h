#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace zellab {

/// Solves the discrete Poisson equation on a box of width by height pixels whose border line is held fixed:
/// for each of the (width - 2) by (height - 2) interior samples, the sum of the four neighbours less four
/// times the sample is given. The sine transform diagonalises that operator, so a solve is two transforms and
/// one division a coefficient, in single precision. One solver serves any number of channels.
///
/// FFTW ends the process where an allocation of its own fails. Before it is called, the memory that it takes
/// is asked for, and std::bad_alloc thrown where there is none; only what other threads take between the
/// question and the call can still end the process.
class SineSolver {
public:
    /// Needs width and height of at least 3. Plans with FFTW_ESTIMATE: the plan, and so the rounding, must
    /// not depend on timing. The planner is not thread-safe, so plans are made and destroyed under one lock.
    SineSolver(int width, int height);
    ~SineSolver();
    SineSolver(const SineSolver&) = delete;
    SineSolver& operator=(const SineSolver&) = delete;

    int interiorWidth() const { return m_interiorWidth; }
    int interiorHeight() const { return m_interiorHeight; }

    /// A work plane of the interior, row after row; aligned as the plan wants it.
    struct Free {
        void operator()(float* samples) const;
    };
    using Samples = std::unique_ptr<float[], Free>;
    Samples makeSamples() const;

    /// In: the right side, from which the known border values next to each sample were subtracted.
    /// Out: the solution. `samples` comes from makeSamples. Safe from several threads on several planes.
    void solve(float* samples) const;

private:
    struct PlanHolder;
    int m_interiorWidth, m_interiorHeight;
    std::vector<float> m_columnTerms;  // 2 cos(pi (i + 1) / (width - 1))
    std::vector<float> m_rowTerms;     // 2 cos(pi (j + 1) / (height - 1)) - 4
    std::unique_ptr<PlanHolder> m_plan;
};

}  // namespace zellab
