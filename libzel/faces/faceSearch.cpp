#include "libzel/faces/faceSearch.h"

#include "frame/zel_log.h"
#include "libzel/faces/faceFinder.h"
#include "libzel/faces/networkFinder.h"
#include "libzel/networks/networkFolder.h"

namespace zel {

namespace {

/// Nothing, with the reason, where the networks cannot be had or fail.
std::optional<FaceSet> searchByNetworks(const Image& image, const std::string& folder, std::string& reason) {
    if (folder.empty()) return std::nullopt;
    try {
        const auto finder = NetworkFinder::load(folder, reason);
        if (!finder) return std::nullopt;
        FaceSet found = finder->find(image);
        if (finder->refines())
            ZEL_LOG_INFO("faces are searched for by the networks in %s", folder.c_str());
        else
            ZEL_LOG_INFO("faces are searched for by the networks in %s, without the refined ones (%s)",
                         folder.c_str(), reason.c_str());
        return found;
    } catch (const NetworkFailure& failure) {
        reason = failure.what();
        return std::nullopt;
    }
}

}  // namespace

FaceSet searchFaces(const Image& image, const std::string& assets) {
    const std::string folder = networkFolder(assets);
    std::string reason;
    if (auto found = searchByNetworks(image, folder, reason)) return *found;
    const std::string hint = networkFolderHint(folder);
    ZEL_LOG_INFO("faces are searched for by the built-in finder: %s%s%s", reason.c_str(),
                 reason.empty() ? "" : "; ", hint.c_str());
    FaceDetector detector(detectorFolder());
    return findFaces(image, detector);
}

}  // namespace zel
