#include "writePicture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "effect.h"
#include "jpegFile.h"
#include "pngFile.h"

namespace zel {

namespace {

namespace fs = std::filesystem;

/// Permissions of a new file under the process's mask.
mode_t newFileMode() {
    static const mode_t mode = [] {
        const mode_t mask = umask(0);
        umask(mask);
        return static_cast<mode_t>(0666 & ~mask);
    }();
    return mode;
}

/// A file under a temporary name beside its target; removed unless it was renamed.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& target)
        : m_name((target.parent_path() / ".zel-XXXXXX").string()), m_fd(mkostemp(m_name.data(), O_CLOEXEC)) {
        if (m_fd < 0) throw Failure("cannot be written (" + reason() + ")");
    }
    ~TemporaryFile() {
        if (m_fd >= 0) close(m_fd);
        if (!m_renamed) unlink(m_name.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    void write(std::span<const unsigned char> bytes, mode_t mode) {
        // Some file systems know no permissions; the contents count.
        if (fchmod(m_fd, mode) != 0 && errno != EPERM && errno != ENOTSUP)
            throw Failure("cannot be written (" + reason() + ")");
        while (!bytes.empty()) {
            const ssize_t count = ::write(m_fd, bytes.data(), bytes.size());
            if (count < 0 && errno == EINTR) continue;
            if (count < 0) throw Failure("cannot be written (" + reason() + ")");
            bytes = bytes.subspan(static_cast<std::size_t>(count));
        }
        // A full disk may show only here.
        const bool closed = close(m_fd) == 0;
        m_fd = -1;
        if (!closed) throw Failure("cannot be written (" + reason() + ")");
    }

    void renameTo(const fs::path& target) {
        if (rename(m_name.c_str(), target.c_str()) != 0)
            throw Failure("cannot be written (" + reason() + ")");
        m_renamed = true;
    }

private:
    static std::string reason() { return std::strerror(errno); }

    std::string m_name;
    int m_fd;
    bool m_renamed = false;
};

}  // namespace

std::optional<PictureFormat> formatOfSuffix(const fs::path& path) {
    std::string suffix = path.extension().string();
    std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (suffix == ".png") return PictureFormat::png;
    if (suffix == ".jpg" || suffix == ".jpeg") return PictureFormat::jpeg;
    return std::nullopt;
}

void writeFileSafely(const fs::path& path, std::span<const unsigned char> bytes) {
    std::error_code error;
    const fs::path resolved = fs::is_symlink(path, error) ? fs::weakly_canonical(path, error) : path;
    const fs::path& target = error ? path : resolved;
    struct stat status {};
    const bool exists = stat(target.c_str(), &status) == 0;
    if (exists && S_ISDIR(status.st_mode)) throw Failure("is a folder");
    if (exists && !S_ISREG(status.st_mode)) throw Failure("is not a regular file");

    TemporaryFile temporary(target);
    temporary.write(bytes, exists ? status.st_mode & 07777 : newFileMode());
    temporary.renameTo(target);
}

void writeText(const fs::path& path, const std::string& text) {
    writeFileSafely(path, {reinterpret_cast<const unsigned char*>(text.data()), text.size()});
}

void writePicture(const fs::path& path, const Image& image) {
    const auto format = formatOfSuffix(path);
    if (!format) throw Failure("has no suffix that names a format (.png, .jpg, .jpeg)");
    writeFileSafely(path, *format == PictureFormat::png ? encodePng(image) : encodeJpeg(image));
}

}  // namespace zel
