#pragma once

#include <stdexcept>
#include <string>

namespace zeltest {

/// The words of the fault that a call ends with; "accepted" without one.
template <typename Fault = std::runtime_error, typename Call>
std::string faultOf(const Call& call) {
    try {
        call();
    } catch (const Fault& fault) {
        return fault.what();
    }
    return "accepted";
}

}  // namespace zeltest
