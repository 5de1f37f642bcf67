#include "platform/fileTimes.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace zellab::platform {

FileTimes::FileTimes(const std::filesystem::path& path) {
    struct stat status {};
    m_told = stat(path.c_str(), &status) == 0;
    m_read = {status.st_atim.tv_sec, status.st_atim.tv_nsec};
    m_written = {status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

void FileTimes::giveTo(const std::filesystem::path& path) const {
    const timespec times[2] = {{m_read.whole, m_read.nanoseconds}, {m_written.whole, m_written.nanoseconds}};
    if (m_told) utimensat(AT_FDCWD, path.c_str(), times, 0);
}

}  // namespace zellab::platform
