#pragma once

#include <cstdint>
#include <filesystem>

namespace zellab::platform {

/// When a file was last read and written, to be given to what takes its place.
class FileTimes {
public:
    explicit FileTimes(const std::filesystem::path& path);
    /// Where the times were not told, or the file takes none, nothing happens.
    void giveTo(const std::filesystem::path& path) const;

private:
    /// In the system's own count: seconds and nanoseconds, or one number.
    struct Moment {
        std::int64_t whole = 0;
        long nanoseconds = 0;
    };
    Moment m_read, m_written;
    bool m_told = false;
};

}  // namespace zellab::platform
