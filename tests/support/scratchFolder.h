#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/randomImage.h"

namespace zeltest {

/// A folder of its own that goes with the object.
class ScratchFolder {
public:
    ScratchFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "zel_test_XXXXXX").string();
        if (mkdtemp(name.data())) m_path = name;
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string path(const std::string& name) const { return (m_path / name).string(); }

    /// Writes a file and gives its path.
    std::string write(const std::string& name, const Bytes& bytes) const {
        std::ofstream file(path(name), std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return path(name);
    }

private:
    std::filesystem::path m_path;
};

}  // namespace zeltest
