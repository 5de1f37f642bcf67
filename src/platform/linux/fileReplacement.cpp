#include "platform/fileReplacement.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <random>
#include <system_error>

#include "platform/outputSignals.h"

namespace zellab::platform {

namespace {

namespace fs = std::filesystem;

/// What an output keeps of the file that it replaces: who may read, write and run it. Its set-user-id bit was
/// for the old contents.
constexpr mode_t kPermissions = 0777;

/// Permissions of a new file under the process's mask.
mode_t newFileMode() {
    static const mode_t mode = [] {
        const mode_t mask = umask(0);
        umask(mask);
        return static_cast<mode_t>(0666 & ~mask);
    }();
    return mode;
}

/// ".zel-" and 64 random bits, which nobody else has in the same folder.
std::string temporaryName(const fs::path& target) {
    std::random_device random;
    char name[32];
    std::snprintf(name, sizeof name, ".zel-%08x%08x", random(), random());
    return (target.parent_path() / name).string();
}

/// A file under a temporary name beside its target; removed unless it was renamed, also where a signal ends
/// the program.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& target)
        : m_name(temporaryName(target)),
          m_unfinished(m_name.c_str()),
          m_fd(open(m_name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600)) {
        if (m_fd < 0) throwError();
    }
    ~TemporaryFile() {
        if (m_fd >= 0) close(m_fd);
        if (!m_renamed) unlink(m_name.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void write(std::span<const unsigned char> bytes, mode_t mode) {
        // Some file systems know no permissions; the contents count.
        if (fchmod(m_fd, mode) != 0 && errno != EPERM && errno != ENOTSUP) throwError();
        while (!bytes.empty()) {
            const ssize_t count = ::write(m_fd, bytes.data(), bytes.size());
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) throwError();
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        }
        sync();
        // A full disk may show only here.
        const bool closed = close(m_fd) == 0;
        m_fd = -1;
        if (!closed) throwError();
    }

    void renameTo(const fs::path& target) {
        if (rename(m_name.c_str(), target.c_str()) != 0) throwError();
        m_renamed = true;
    }

private:
    [[noreturn]] static void throwError() { throw std::system_error(errno, std::generic_category()); }

    /// The contents are on the disk before the name is: a power cut leaves the old file or the new one, never
    /// an empty one.
    void sync() const {
        while (fsync(m_fd) != 0) {
            if (errno == EINVAL || errno == ENOTSUP) return;  // a file system that cannot
            if (errno != EINTR) throwError();
        }
    }

    std::string m_name;
    UnfinishedFile m_unfinished;
    int m_fd;
    bool m_renamed = false;
};

}  // namespace

std::string replaceFile(const fs::path& path, std::span<const unsigned char> bytes) try {
    std::error_code error;
    const fs::path resolved = fs::is_symlink(path, error) ? fs::weakly_canonical(path, error) : path;
    const fs::path& target = error ? path : resolved;
    struct stat status {};
    const bool exists = stat(target.c_str(), &status) == 0;
    if (exists && S_ISDIR(status.st_mode)) return "is a folder";
    if (exists && !S_ISREG(status.st_mode)) return "is not a regular file";

    TemporaryFile temporary(target);
    temporary.write(bytes, exists ? status.st_mode & kPermissions : newFileMode());
    temporary.renameTo(target);
    return {};
} catch (const std::system_error& error) {
    return "cannot be written (" + std::string(std::strerror(error.code().value())) + ")";
}

}  // namespace zellab::platform
