#pragma once

#include <cstdio>
#include <memory>

namespace zellab::platform {

/// True where something lies at the path, a directory included.
bool pathExists(const char* path);

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Opens a regular file for reading, bytes as they are. Null for what is missing, unreadable, or no regular
/// file: a pipe would block the caller, and a directory or device has no length.
File openRegularFile(const char* path);

}  // namespace zellab::platform
