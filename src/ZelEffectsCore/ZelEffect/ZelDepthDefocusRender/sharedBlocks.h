#pragma once

/// Memory that copies of a render share without knowing of each other: each copy releases what it points to,
/// and the last release frees it. Any thread may call.

namespace DefocusCore {

/// One more holder of a block. Null does nothing.
void retainShared(const void* block);

/// One holder less. @return whether it was the last one; what it points to is the caller's to free then.
/// A block that was never retained has one holder.
[[nodiscard]] bool releaseShared(const void* block);

/// releaseShared for a block of malloc(), which the last one frees. Null does nothing.
void freeShared(void* block);

}  // namespace DefocusCore
