#include "platform/fileReplacement.h"

#include <algorithm>
#include <cstdio>
#include <random>

#include "platform/outputSignals.h"
#include "platform/windows/fileHandle.h"
#include "platform/windows/wideText.h"

namespace zellab::platform {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;

/// ".zel-" and 64 random bits, which nobody else has in the same folder.
fs::path temporaryName(const fs::path& target) {
    std::random_device random;
    char name[32];
    std::snprintf(name, sizeof name, ".zel-%08x%08x", random(), random());
    return target.parent_path() / name;
}

/// A file under a temporary name beside its target; removed unless it took the target's place, also where the
/// program is ended meanwhile.
class TemporaryFile {
public:
    explicit TemporaryFile(const fs::path& target)
        : m_path(temporaryName(target)),
          m_unfinished(m_path.string().c_str()),
          // Others may delete it while it is open: the thread that removes unfinished files does.
          m_file(CreateFileW(m_path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                             CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    ~TemporaryFile() {
        if (!m_file && m_placed) return;
        m_file.close();
        DeleteFileW(m_path.c_str());
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    /// The contents are on the disk before the name is: a power cut leaves the old file or the new one, never an
    /// empty one.
    bool write(std::span<const unsigned char> bytes) {
        if (!m_file) return false;
        while (!bytes.empty()) {
            DWORD count = 0;
            if (!WriteFile(m_file.get(), bytes.data(),
                           static_cast<DWORD>(std::min(bytes.size(), kMostAtOnce)), &count, nullptr))
                return false;
            bytes = bytes.subspan(count);
        }
        return FlushFileBuffers(m_file.get()) && m_file.close();
    }

    /// The file that is replaced hands on who may do what with it, where its file system knows that.
    bool takePlaceOf(const fs::path& target) {
        m_placed =
            ReplaceFileW(target.c_str(), m_path.c_str(), nullptr, REPLACEFILE_IGNORE_MERGE_ERRORS, nullptr,
                         nullptr) ||
            MoveFileExW(m_path.c_str(), target.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
        return m_placed;
    }

private:
    const fs::path m_path;
    UnfinishedFile m_unfinished;
    FileHandle m_file;
    bool m_placed = false;
};

/// What is there may be a device: NUL and CON lie in every folder.
bool isRegular(const fs::path& path) {
    const FileHandle file(CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return !file || GetFileType(file.get()) == FILE_TYPE_DISK;
}

}  // namespace

std::string replaceFile(const fs::path& path, std::span<const unsigned char> bytes) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY))
        return "is a folder";
    if (!isRegular(path)) return "is not a regular file";

    TemporaryFile temporary(path);
    if (temporary.write(bytes) && temporary.takePlaceOf(path)) return {};
    return "cannot be written (" + lastErrorText() + ")";
}

}  // namespace zellab::platform
