#pragma once

#include <memory>

namespace zellab {

/// The bytes of a file and one zero byte behind them.
struct FileBytes {
    std::unique_ptr<unsigned char[]> data;  // null where the file could not be read
    int size = 0;
};

/// Reads a regular file in one piece. Directories, pipes and devices, and files of 2 GiB and more, are not
/// read. Bytes that the file lost while it was read are 0.
FileBytes readImageFile(const char* path);

}  // namespace zellab
