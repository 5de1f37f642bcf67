#include "platform/fileBytes.h"

#include <io.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

#include "platform/windows/diskFile.h"

namespace zellab::platform {

namespace {

/// The library takes a file's length as an int.
constexpr std::int64_t kLargestFile = std::numeric_limits<int>::max();

class FileDescriptor {
public:
    explicit FileDescriptor(const char* path) : m_fd(openDiskFile(path)) {}
    ~FileDescriptor() {
        if (m_fd >= 0) _close(m_fd);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    int get() const { return m_fd; }

private:
    int m_fd;
};

FileBytes failure() {
    if (errno == EISDIR) return {std::nullopt, "is a folder"};
    if (errno == EINVAL) return {std::nullopt, "is not a regular file"};
    return {std::nullopt, std::strerror(errno)};
}

}  // namespace

FileBytes readFileBytes(const char* path) {
    const FileDescriptor file(path);
    const std::int64_t length = file.get() < 0 ? -1 : diskFileLength(file.get());
    if (length < 0) return failure();
    if (length > kLargestFile) return {std::nullopt, "is larger than two gigabytes"};
    std::vector<unsigned char> bytes(static_cast<std::size_t>(length));
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const int count =
            _read(file.get(), bytes.data() + filled, static_cast<unsigned>(bytes.size() - filled));
        if (count < 0) return failure();
        if (count == 0) break;  // the file shrank meanwhile
        filled += static_cast<std::size_t>(count);
    }
    bytes.resize(filled);
    return {std::move(bytes), {}};
}

}  // namespace zellab::platform
