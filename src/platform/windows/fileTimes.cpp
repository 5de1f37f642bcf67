#include "platform/fileTimes.h"

#include "platform/windows/fileHandle.h"

namespace zellab::platform {

namespace {

std::int64_t ticks(const FILETIME& time) {
    return static_cast<std::int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
}

FILETIME fileTime(std::int64_t ticks) {
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

FileHandle openFor(DWORD access, const std::filesystem::path& path) {
    return FileHandle(CreateFileW(path.c_str(), access,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
}

}  // namespace

FileTimes::FileTimes(const std::filesystem::path& path) {
    const FileHandle file = openFor(FILE_READ_ATTRIBUTES, path);
    FILETIME read{}, written{};
    m_told = file && GetFileTime(file.get(), nullptr, &read, &written);
    m_read.whole = ticks(read);
    m_written.whole = ticks(written);
}

void FileTimes::giveTo(const std::filesystem::path& path) const {
    if (!m_told) return;
    const FILETIME read = fileTime(m_read.whole), written = fileTime(m_written.whole);
    if (const FileHandle file = openFor(FILE_WRITE_ATTRIBUTES, path))
        SetFileTime(file.get(), nullptr, &read, &written);
}

}  // namespace zellab::platform
