#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/randomImage.h"

namespace zeltest {

inline Bytes readBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void writeBytes(const std::string& path, const Bytes& bytes) {
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

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
    const std::filesystem::path& path() const { return m_path; }
    std::string operator/(const std::string& name) const { return path(name); }

    /// Writes a file and gives its path.
    std::string write(const std::string& name, const Bytes& bytes) const {
        writeBytes(path(name), bytes);
        return path(name);
    }

private:
    std::filesystem::path m_path;
};

}  // namespace zeltest
