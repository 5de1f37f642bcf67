#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zellab::platform {

/// A file's content, or why there is none.
struct FileBytes {
    std::optional<std::vector<unsigned char>> bytes;
    std::string why;  // "is a folder", "No such file or directory"
};

/// All bytes of a regular file of up to two gigabytes. A pipe or device is refused without a wait.
FileBytes readFileBytes(const char* path);

}  // namespace zellab::platform
