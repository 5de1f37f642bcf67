#include "zellab/imageproc/poisson/sineSolver.h"

#include <fftw3.h>

#include <cassert>
#include <cmath>
#include <mutex>
#include <new>
#include <numbers>
#include <type_traits>

#include "zellab/imageproc/core/memoryReserve.h"

namespace zellab {

namespace {

std::mutex& plannerMutex() {
    static std::mutex mutex;
    return mutex;
}

/// 2 cos(pi (k + 1) / (count + 1)) + shift for k in [0, count): computed in double, kept in single precision.
std::vector<float> cosineTerms(int count, double shift) {
    std::vector<float> terms(static_cast<std::size_t>(count));
    for (int k = 0; k < count; ++k)
        terms[static_cast<std::size_t>(k)] =
            static_cast<float>(2.0 * std::cos(std::numbers::pi * (k + 1) / (count + 1)) + shift);
    return terms;
}

/// What FFTW takes beside the samples, a multiple of what was measured: planning took at most 0.8 MB and a
/// transform 0.5 MB on sides of up to 20,000 samples, prime ones among them, growing with the longer side.
void requireTransformMemory(int width, int height) {
    constexpr std::size_t kBase = std::size_t{1} << 20, kPerSide = 128;
    requireMemory(kBase + kPerSide * (static_cast<std::size_t>(width) + static_cast<std::size_t>(height)));
}

}  // namespace

struct SineSolver::PlanHolder {
    fftwf_plan plan = nullptr;
    ~PlanHolder() {
        const std::lock_guard<std::mutex> lock(plannerMutex());
        if (plan) fftwf_destroy_plan(plan);
    }
};

void SineSolver::Free::operator()(float* samples) const {
    fftwf_free(samples);
}

SineSolver::Samples SineSolver::makeSamples() const {
    const std::size_t count =
        static_cast<std::size_t>(m_interiorWidth) * static_cast<std::size_t>(m_interiorHeight);
    Samples samples(fftwf_alloc_real(count));
    if (!samples) throw std::bad_alloc();
    return samples;
}

SineSolver::SineSolver(int width, int height)
    : m_interiorWidth(width - 2),
      m_interiorHeight(height - 2),
      m_columnTerms(cosineTerms(m_interiorWidth, 0.0)),
      m_rowTerms(cosineTerms(m_interiorHeight, -4.0)),
      m_plan(std::make_unique<PlanHolder>()) {
    assert(width >= 3 && height >= 3);
    const Samples samples = makeSamples();  // an ESTIMATE plan does not touch them
    const std::lock_guard<std::mutex> lock(plannerMutex());
    requireTransformMemory(m_interiorWidth, m_interiorHeight);
    m_plan->plan = fftwf_plan_r2r_2d(m_interiorHeight, m_interiorWidth, samples.get(), samples.get(),
                                     FFTW_RODFT00, FFTW_RODFT00, FFTW_ESTIMATE);
    if (!m_plan->plan) throw std::bad_alloc();
}

SineSolver::~SineSolver() = default;

void SineSolver::solve(float* samples) const {
    requireTransformMemory(m_interiorWidth, m_interiorHeight);
    fftwf_execute_r2r(m_plan->plan, samples, samples);
    float* row = samples;
    for (int j = 0; j < m_interiorHeight; ++j, row += m_interiorWidth) {
        const float rowTerm = m_rowTerms[static_cast<std::size_t>(j)];
        for (int i = 0; i < m_interiorWidth; ++i) {
            const float eigenvalue = m_columnTerms[static_cast<std::size_t>(i)] + rowTerm;
            // On sides of many thousands of pixels the lowest sum rounds to 0: that coefficient is left out.
            row[i] = eigenvalue != 0.0f ? row[i] / eigenvalue : 0.0f;
        }
    }
    requireTransformMemory(m_interiorWidth, m_interiorHeight);
    fftwf_execute_r2r(m_plan->plan, samples, samples);
    const float scale =
        1.0f / (4.0f * static_cast<float>(m_interiorWidth + 1) * static_cast<float>(m_interiorHeight + 1));
    const std::size_t count =
        static_cast<std::size_t>(m_interiorWidth) * static_cast<std::size_t>(m_interiorHeight);
    for (std::size_t k = 0; k < count; ++k) samples[k] *= scale;
}

}  // namespace zellab
