#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace zelcli::studio {

/// The folder that the page may see: plain names in it lead to files, and nothing else does.
class Folder {
public:
    /// Throws UsageError where the path is no folder.
    explicit Folder(const std::string& path);

    /// The folder's own name, for the page's title.
    std::string name() const;

    /// Names of pictures, of colour lookups and of files of JSON, in order.
    std::vector<std::string> pictures() const;
    std::vector<std::string> lookups() const;
    std::vector<std::string> jsonFiles() const;

    /// An existing file. Links may lead within the folder only. Throws Refused.
    std::filesystem::path toRead(const std::string& name) const;

    /// A place for a file, in the folder or in one below it, which is made where it is missing. What lies there
    /// is no link. Throws Refused.
    std::filesystem::path toWrite(const std::string& name, const std::string& below = "") const;

private:
    std::vector<std::string> namesWith(bool (*wanted)(const std::filesystem::path&)) const;

    std::filesystem::path m_root;  // without links
};

}  // namespace zelcli::studio
