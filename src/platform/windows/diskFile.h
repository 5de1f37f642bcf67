#pragma once

#include <cstdint>
#include <cstdio>

namespace zellab::platform {

/// A descriptor on a file of a disk, opened for reading, or -1 with errno set: EISDIR for a folder, EINVAL for
/// what is neither. Child processes do not get it.
int openDiskFile(const char* path);

/// Its length in bytes, or -1 with errno set.
std::int64_t diskFileLength(int descriptor);

}  // namespace zellab::platform
