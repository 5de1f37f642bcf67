#include "libzel/assets.h"

#include <filesystem>

#include "libzel/failure.h"
#include "platform/libraryFolder.h"
#include "platform/processEnvironment.h"
#include "platform/utf8Path.h"
#include "zellab/utils/assetFolders.h"

namespace zel {

namespace {

/// Where this library was loaded from. Asked while it is loaded: the path that the system keeps may count from
/// the working directory of that moment.
const std::string kLibraryFolder = zellab::platform::folderOfCode(&kLibraryFolder);

}  // namespace

std::string findAssets() {
    namespace fs = std::filesystem;
    using zellab::platform::utf8Path;
    std::error_code error;
    const auto told = zellab::platform::environmentText("ZEL_ASSETS");
    if (told && !told->empty() && !fs::is_directory(utf8Path(*told), error))
        throw Failure("ZEL_ASSETS names no folder", ZEL_BAD_ASSET);
    for (const std::string& folder : zellab::assetFolders(kLibraryFolder))
        if (fs::is_directory(utf8Path(folder), error))
            return fs::absolute(utf8Path(folder)).lexically_normal().string();
    return {};
}

}  // namespace zel
