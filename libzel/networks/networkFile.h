#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zel {

/// By what a file that was replaced is told from the one before.
struct FileStamp {
    std::uintmax_t size = 0;
    std::filesystem::file_time_type time{};
    bool operator==(const FileStamp&) const = default;
};

/// Nothing where there is no such file.
std::optional<FileStamp> stampOf(const std::string& path);

/// The bytes of a network's file.
/// @param sum      its SHA-256; empty: any file is taken
/// @param problem  what is wrong, in a few words, where nothing is returned
std::optional<std::vector<unsigned char>> readNetwork(const std::string& path, std::string_view sum,
                                                      std::string& problem);

/// What is wrong with the file, as readNetwork tells it; empty where nothing is. A file that was right and has not
/// changed since is not read again.
std::string networkProblem(const std::string& path, std::string_view sum);

}  // namespace zel
