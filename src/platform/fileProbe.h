#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <vector>

namespace zellab::platform {

/// True where something lies at the path, a directory included.
bool pathExists(const char* path);

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Opens a regular file for reading, bytes as they are. Null for what is missing, unreadable, or no regular
/// file: a pipe would block the caller, and a directory or device has no length. Throws std::bad_alloc, since a file
/// for which there is no memory is not missing.
File openRegularFile(const char* path);

/// Its length in bytes as it is now; nothing where it cannot be had.
std::optional<std::size_t> fileLength(const File& file);

/// The bytes of a regular file. A file that shrinks meanwhile gives fewer than it had.
/// @param largest  in bytes; a longer file is not read
/// @return nothing for what openRegularFile refuses and for what is too long
std::optional<std::vector<unsigned char>> readRegularFile(const char* path, std::size_t largest);

bool isDirectory(const char* path);

}  // namespace zellab::platform
