#pragma once

#include <cstddef>

/// Memory that copies of a render share without knowing of each other: each copy releases what it points to,
/// and the last release frees it. Any thread may call.

namespace DefocusCore {

/// `size` bytes, held once. Null where there are none to be had; a size of 0 gives a block as well.
unsigned char* allocateShared(std::size_t size);

/// One more holder of a block. Null does nothing.
void retainShared(const void* block);

/// One holder less. @return whether it was the last one; what it points to is the caller's to free then
[[nodiscard]] bool releaseShared(const void* block);

/// One holder less of a block that malloc() made; the last one frees it. Null does nothing.
void freeShared(void* block);

}  // namespace DefocusCore
