#pragma once

#include <initializer_list>

/// Memory that copies of a render share without knowing of each other: each copy releases what it points to,
/// and the last release frees it. Any thread may call.

namespace DefocusCore {

/// One more holder of each block; nulls do nothing. Throws std::bad_alloc where the holders cannot be noted,
/// and then none of the blocks has one more.
void retainShared(std::initializer_list<const void*> blocks);

/// One holder less. @return whether it was the last one; what it points to is the caller's to free then.
/// A block that was never retained has one holder.
[[nodiscard]] bool releaseShared(const void* block);

/// releaseShared for a block of malloc(), which the last one frees. Null does nothing.
void freeShared(void* block);

}  // namespace DefocusCore
