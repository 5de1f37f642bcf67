#pragma once

#include <cstddef>

namespace zellab {

/// Throws std::bad_alloc unless that much memory can be had at this moment; keeps none of it. Asked before a
/// call into a library that ends the process, or reads from null, where an allocation of its own fails.
/// What other threads take between the question and the call is not held back.
void requireMemory(std::size_t bytes);

}  // namespace zellab
