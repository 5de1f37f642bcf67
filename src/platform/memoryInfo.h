#pragma once

#include <cstddef>

namespace zellab::platform {

/// Bytes of memory that this machine has.
std::size_t physicalMemory();

}  // namespace zellab::platform
