#pragma once

#include <algorithm>
#include <string>

#include "libzel/failure.h"

namespace zel {

/// A host's progress function, on the thread that called.
class Progress {
public:
    Progress(zel_progress_function function, void* user) : m_function(function), m_user(user) {}

    /// Throws ZEL_CANCELLED where the host wants no more.
    void tell(const std::string& stage, double done01) const {
        if (m_function && m_function(m_user, std::clamp(done01, 0.0, 1.0), stage.c_str()) != 0)
            throw Failure("cancelled at '" + stage + "'", ZEL_CANCELLED);
    }

private:
    zel_progress_function m_function;
    void* m_user;
};

}  // namespace zel
