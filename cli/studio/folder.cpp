#include "cli/studio/folder.h"

#include <algorithm>
#include <cctype>

#include "cli/failure.h"
#include "cli/files/pictureFormat.h"
#include "cli/studio/message.h"

namespace zelcli::studio {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestName = 255;

std::string lowerSuffix(const fs::path& path) {
    std::string suffix = path.extension().string();
    std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return suffix;
}

bool isLookup(const fs::path& path) {
    return lowerSuffix(path) == ".cube";
}

bool isJson(const fs::path& path) {
    return lowerSuffix(path) == ".json";
}

/// One component of a path that means nothing but itself, and is not hidden.
void requirePlainName(const std::string& name) {
    const bool plain = !name.empty() && name.size() <= kLongestName && name[0] != '.' &&
                       std::none_of(name.begin(), name.end(),
                                    [](unsigned char c) { return c == '/' || c == '\\' || c < 32; });
    if (!plain) throw Refused(400, "'" + name + "' cannot be the name of a file here");
}

}  // namespace

Folder::Folder(const std::string& path) {
    std::error_code error;
    m_root = fs::canonical(path, error);
    if (error || !fs::is_directory(m_root, error)) throw UsageError("'" + path + "' is no folder");
}

std::string Folder::name() const {
    return m_root.has_filename() ? m_root.filename().string() : m_root.string();
}

std::vector<std::string> Folder::namesWith(bool (*wanted)(const fs::path&)) const {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(m_root, error), end; !error && entry != end; entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        std::error_code unreadable;
        if (name[0] != '.' && wanted(entry->path()) && entry->is_regular_file(unreadable))
            names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> Folder::pictures() const {
    return namesWith(looksLikePicture);
}

std::vector<std::string> Folder::lookups() const {
    return namesWith(isLookup);
}

std::vector<std::string> Folder::jsonFiles() const {
    return namesWith(isJson);
}

fs::path Folder::toRead(const std::string& name) const {
    requirePlainName(name);
    std::error_code error;
    fs::path real = fs::canonical(m_root / name, error);
    if (error || !fs::is_regular_file(real, error)) throw Refused(404, "there is no file '" + name + "'");
    const auto [rest, unused] = std::mismatch(m_root.begin(), m_root.end(), real.begin(), real.end());
    if (rest != m_root.end()) throw Refused(403, "'" + name + "' leads out of the folder");
    return real;
}

fs::path Folder::toWrite(const std::string& name, const std::string& below) const {
    requirePlainName(name);
    fs::path folder = m_root;
    std::error_code error;
    if (!below.empty()) {
        requirePlainName(below);
        folder /= below;
        fs::create_directory(folder, error);
        if (!fs::is_directory(fs::symlink_status(folder, error)))
            throw Refused(403, "'" + below + "' cannot be a folder here");
    }
    const fs::file_status there = fs::symlink_status(folder / name, error);
    if (fs::exists(there) && !fs::is_regular_file(there))
        throw Refused(403, "'" + name + "' is no plain file");
    return folder / name;
}

}  // namespace zelcli::studio
