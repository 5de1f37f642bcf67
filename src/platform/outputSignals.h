#pragma once

#include <cstddef>

namespace zellab::platform {

/// For programs that write files: an interrupt, a termination, a hang-up and a broken pipe end the process as
/// ever, but remove the unfinished files first, and a file size limit shows as the failure of the write
/// alone. Signals that the process ignores or handles stay as they are. Called once, before the first file.
void removeUnfinishedFilesOnSignals();

/// A file that goes where such a signal ends the process while the object lives. Any thread; a process holds
/// 128 at once, and a file beyond those, or with a path of 4096 bytes and more, is not removed.
class UnfinishedFile {
public:
    /// The path is noted before the file is made, so that there is no moment without it.
    explicit UnfinishedFile(const char* path);
    ~UnfinishedFile();
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;

private:
    std::size_t m_slot;
};

}  // namespace zellab::platform
