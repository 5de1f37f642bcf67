#include "libzel/faces/faceSearch.h"

#include "frame/zel_log.h"
#include "libzel/faces/faceFinder.h"
#include "libzel/faces/networkFinder.h"
#include "libzel/networks/networkFolder.h"
#include "libzel/pixels.h"

namespace zel {

namespace {

/// The caller's pixels where they are straight RGBA, else a copy.
class StraightPixels {
public:
    explicit StraightPixels(const zel_pixels& pixels) {
        const bool straight = pixels.format == ZEL_RGBA8 && pixels.flags == 0;
        if (!straight) m_copy = imageOf(pixels);
        const auto* data = straight ? static_cast<const unsigned char*>(pixels.data) : m_copy.rgba.data();
        m_view = {data, pixels.width, pixels.height};
        if (straight && pixels.stride) m_view.stride = static_cast<std::ptrdiff_t>(pixels.stride);
    }
    StraightPixels(const StraightPixels&) = delete;
    StraightPixels& operator=(const StraightPixels&) = delete;

    zellab::ConstImageView view() const { return m_view; }

private:
    Image m_copy;
    zellab::ConstImageView m_view;
};

/// Nothing, with the reason, where the networks cannot be had or fail.
std::optional<FaceSet> searchByNetworks(const zel_pixels& pixels, const std::string& folder,
                                        std::string& reason) {
    if (folder.empty()) return std::nullopt;
    try {
        const auto finder = NetworkFinder::load(folder, reason);
        if (!finder) return std::nullopt;
        FaceSet found = finder->find(StraightPixels(pixels).view());
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

FaceSet searchFaces(const zel_pixels& pixels, const std::string& assets) {
    const std::string folder = networkFolder(assets);
    std::string reason;
    if (auto found = searchByNetworks(pixels, folder, reason)) return *found;
    const std::string hint = networkFolderHint(folder);
    ZEL_LOG_INFO("faces are searched for by the built-in finder: %s%s%s", reason.c_str(),
                 reason.empty() ? "" : "; ", hint.c_str());
    FaceDetector detector(detectorFolder());
    return findFaces(imageOf(pixels), detector);
}

}  // namespace zel
