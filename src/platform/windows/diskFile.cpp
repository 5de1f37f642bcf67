#include "platform/windows/diskFile.h"

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include <cerrno>

#include "platform/windows/wideText.h"

namespace zellab::platform {

int openDiskFile(const char* path) {
    const std::wstring wide = wideText(path);
    const DWORD attributes = GetFileAttributesW(wide.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY)) {
        errno = EISDIR;
        return -1;
    }
    const int descriptor = _wopen(wide.c_str(), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
    if (descriptor < 0) return -1;
    if (GetFileType(reinterpret_cast<HANDLE>(_get_osfhandle(descriptor))) == FILE_TYPE_DISK)
        return descriptor;
    _close(descriptor);
    errno = EINVAL;
    return -1;
}

std::int64_t diskFileLength(int descriptor) {
    return _filelengthi64(descriptor);
}

}  // namespace zellab::platform
