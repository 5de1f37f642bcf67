#pragma once

namespace zellab::platform {

/// Instruction sets that vectorised kernels are built for, beside the x86-64 baseline.
enum class SimdLevel { baseline, avx2 };

/// The best level of this processor. A SimdLimit alive on this thread lowers it. A kernel asks once per
/// call, on the caller's thread, and hands the answer to its workers; both forms give the same bytes.
SimdLevel simdLevel();

/// The form of a kernel that runs at a level: a kernel `x` that has both is written as xPlain and xAvx2.
template <typename Kernel>
constexpr Kernel pick(SimdLevel level, Kernel plain, Kernel avx2) {
    return level == SimdLevel::avx2 ? avx2 : plain;
}

/// While alive, calls on this thread use at most this level. For tests that hold both forms equal.
class SimdLimit {
public:
    explicit SimdLimit(SimdLevel limit);
    ~SimdLimit();
    SimdLimit(const SimdLimit&) = delete;
    SimdLimit& operator=(const SimdLimit&) = delete;

private:
    SimdLevel m_previous;
};

}  // namespace zellab::platform

/// Marks a function that is compiled for AVX2 and may be called only where simdLevel() says so.
#define ZEL_TARGET_AVX2 __attribute__((target("avx2")))
