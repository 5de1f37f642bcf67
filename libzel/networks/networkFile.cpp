#include "libzel/networks/networkFile.h"

#include <map>
#include <mutex>

#include "libzel/networks/sha256.h"
#include "platform/fileProbe.h"
#include "platform/utf8Path.h"

namespace zel {

namespace {

using zellab::platform::utf8Path;

constexpr std::size_t kLargestFile = std::size_t{256} << 20;  // bytes
constexpr std::size_t kMostFiles = 64;                        // that are remembered

}  // namespace

std::optional<FileStamp> stampOf(const std::string& path) {
    std::error_code error;
    FileStamp stamp;
    stamp.size = std::filesystem::file_size(utf8Path(path), error);
    if (error) return std::nullopt;
    stamp.time = std::filesystem::last_write_time(utf8Path(path), error);
    return error ? std::nullopt : std::optional(stamp);
}

std::optional<std::vector<unsigned char>> readNetwork(const std::string& path, std::string_view sum,
                                                      std::string& problem) {
    problem.clear();
    if (!zellab::platform::pathExists(path.c_str())) {
        problem = "there is no such file";
        return std::nullopt;
    }
    auto bytes = zellab::platform::readRegularFile(path.c_str(), kLargestFile);
    if (!bytes)
        problem = "cannot be read";
    else if (!sum.empty() && sha256(*bytes) != sum)
        problem = "is damaged, or another network than this version was made for";
    return problem.empty() ? std::move(bytes) : std::nullopt;
}

std::string networkProblem(const std::string& path, std::string_view sum) {
    struct Sound {
        FileStamp stamp;
        std::string sum;
    };
    static std::mutex mutex;
    // Never taken down: threads may still work when static objects end.
    static auto& files = *new std::map<std::string, Sound>;

    std::string problem;
    const auto stamp = stampOf(path);
    const std::lock_guard<std::mutex> lock(mutex);
    if (const auto known = files.find(path);
        stamp && known != files.end() && known->second.stamp == *stamp && known->second.sum == sum)
        return problem;
    if (readNetwork(path, sum, problem) && stamp) {
        if (files.size() >= kMostFiles) files.clear();
        files.insert_or_assign(path, Sound{*stamp, std::string(sum)});
    }
    return problem;
}

}  // namespace zel
