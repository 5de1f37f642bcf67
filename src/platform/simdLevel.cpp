#include "platform/simdLevel.h"

#include <algorithm>

namespace zellab::platform {

namespace {
thread_local SimdLevel t_limit = SimdLevel::avx2;
}

SimdLevel simdLevel() {
    static const SimdLevel kProcessor =
        __builtin_cpu_supports("avx2") ? SimdLevel::avx2 : SimdLevel::baseline;
    return std::min(kProcessor, t_limit);
}

SimdLimit::SimdLimit(SimdLevel limit) : m_previous(t_limit) {
    t_limit = limit;
}
SimdLimit::~SimdLimit() {
    t_limit = m_previous;
}

}  // namespace zellab::platform
