#include "platform/fileProbe.h"

#include <io.h>
#include <windows.h>

#include <cstdint>

#include "platform/windows/diskFile.h"
#include "platform/windows/wideText.h"

namespace zellab::platform {

bool pathExists(const char* path) {
    return GetFileAttributesW(wideText(path).c_str()) != INVALID_FILE_ATTRIBUTES;
}

File openRegularFile(const char* path) {
    const int descriptor = openDiskFile(path);
    if (descriptor < 0) return nullptr;
    std::FILE* file = _fdopen(descriptor, "rb");
    if (!file) _close(descriptor);
    return File(file);
}

std::optional<std::size_t> fileLength(const File& file) {
    const std::int64_t length = file ? diskFileLength(_fileno(file.get())) : -1;
    // In 32 bits a file may be longer than any size.
    if (length < 0 || static_cast<std::uint64_t>(length) > SIZE_MAX) return std::nullopt;
    return static_cast<std::size_t>(length);
}

bool isDirectory(const char* path) {
    const DWORD attributes = GetFileAttributesW(wideText(path).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

}  // namespace zellab::platform
