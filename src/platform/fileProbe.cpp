#include "platform/fileProbe.h"

namespace zellab::platform {

std::optional<std::vector<unsigned char>> readRegularFile(const char* path, std::size_t largest) {
    const File file = openRegularFile(path);
    const std::optional<std::size_t> length = fileLength(file);
    if (!length || *length > largest) return std::nullopt;
    std::vector<unsigned char> bytes(*length);
    bytes.resize(std::fread(bytes.data(), 1, bytes.size(), file.get()));
    return bytes;
}

}  // namespace zellab::platform
