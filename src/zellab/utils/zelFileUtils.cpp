#include "zellab/utils/zelFileUtils.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <new>
#include <string>

#include "frame/zel_log.h"
#include "platform/fileProbe.h"
#include "platform/libraryFolder.h"
#include "platform/utf8Path.h"
#include "zellab/utils/assetFolders.h"

namespace zellab {

namespace {

/// A head that claims more bytes than this is damaged. The largest asset has a quarter of a megabyte.
constexpr std::uint64_t kLargestAsset = std::uint64_t{1} << 30;

/// Where this library, or a program that holds the same code, was loaded from. Asked while it is loaded: the
/// path that the system keeps may count from the working directory of that moment.
const std::string kLibraryFolder = platform::folderOfCode(&kLargestAsset);

std::string& assetRoot() {
    static std::string root;
    return root;
}

bool exists(const std::string& path) {
    return platform::pathExists(path.c_str());
}

bool isAbsolute(const char* path) {
    return platform::utf8Path(path).is_absolute();
}

/// A signed little-endian word; 0 where the file ends.
std::int32_t readWord(std::FILE* file) {
    unsigned char bytes[4];
    if (std::fread(bytes, 1, sizeof bytes, file) != sizeof bytes) return 0;
    std::uint32_t word = 0;
    for (int i = 3; i >= 0; --i) word = word << 8 | bytes[i];
    return static_cast<std::int32_t>(word);
}

/// The pixels behind the head. The buffer is zeroed first: a file that is shorter than its head claims
/// leaves no stray memory at the end.
unsigned char* readPixels(const platform::File& file, std::int32_t width, std::int32_t height, int channels) {
    if (width < 1 || height < 1 || channels < 1) return nullptr;
    const std::uint64_t pixels = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    if (pixels > kLargestAsset / static_cast<std::uint64_t>(channels)) return nullptr;
    const auto bytes = static_cast<std::size_t>(pixels * static_cast<std::uint64_t>(channels));
    auto* data = static_cast<unsigned char*>(std::calloc(bytes, 1));
    // A picture that is there is not missing for want of memory; one that is only claimed is damaged.
    if (!data && platform::fileLength(file).value_or(0) >= bytes) throw std::bad_alloc();
    if (data && std::fread(data, 1, bytes, file.get()) < bytes && std::ferror(file.get())) {
        std::free(data);
        return nullptr;
    }
    return data;
}

}  // namespace

unsigned char* ZelFileUtils::LoadPPM(const char* path, int* width, int* height, int channels) {
    if (!path) {
        ZEL_LOG_ERROR("ERROR: ZelFileUtils->LoadPPM file path is NULL");
        return nullptr;
    }
    const std::string full = FindAsset(path);
    if (full.empty()) {
        ZEL_LOG_DEBUG("ZelFileUtils->LoadPPM file not from sdcard or not exist!");
        return nullptr;
    }
    const platform::File file = platform::openRegularFile(full.c_str());
    if (!file) return nullptr;
    const std::int32_t first = readWord(file.get());
    const std::int32_t second = readWord(file.get());
    if (width) *width = first;
    if (height) *height = second;
    return readPixels(file, first, second, channels);
}

std::string ZelFileUtils::FindAsset(const char* path) {
    if (const CallSettings* settings = callSettings(); settings && settings->findsAssetsAlone) {
        if (*path == '\0') return {};
        std::string file = isAbsolute(path) ? path : assetPath(settings->assets, path);
        return exists(file) ? file : std::string();
    }
    if (exists(path)) return path;
    if (!assetRoot().empty()) {
        std::string below = assetRoot() + "/" + path;
        if (exists(below)) return below;
    }
    if (isAbsolute(path) || *path == '\0') return {};
    for (const std::string& folder : assetFolders(kLibraryFolder)) {
        std::string below = folder + "/" + path;
        if (exists(below)) return below;
    }
    return {};
}

const char* ZelFileUtils::GetAssetRoot() {
    return assetRoot().c_str();
}

void ZelFileUtils::SetAssetRoot(const char* root) {
    assetRoot() = root ? root : "";
}

}  // namespace zellab
