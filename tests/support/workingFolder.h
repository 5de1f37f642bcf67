#pragma once

#include <filesystem>

namespace zeltest {

/// Makes a folder the working directory while the object lives. Tests of one process run one after another.
class WorkingFolder {
public:
    explicit WorkingFolder(const std::filesystem::path& folder) : m_before(std::filesystem::current_path()) {
        std::filesystem::current_path(folder);
    }
    ~WorkingFolder() {
        std::error_code ignored;
        std::filesystem::current_path(m_before, ignored);
    }
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

private:
    std::filesystem::path m_before;
};

/// The assets that the build made, as effects find them.
class WithAssets : public WorkingFolder {
public:
    WithAssets() : WorkingFolder(ZEL_ASSETS) {}
};

}  // namespace zeltest
