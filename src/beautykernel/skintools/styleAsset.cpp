#include "beautykernel/skintools/styleAsset.h"

#include <string>

#include "frame/zel_log.h"
#include "zellab/utils/zelFileUtils.h"

namespace zellab {

StyleAsset loadStyleAsset(const char* path) {
    constexpr int kChannels = 4;
    StyleAsset asset;
    asset.pixels.reset(ZelFileUtils::LoadPPM(path, &asset.width, &asset.height, kChannels));
    if (!asset.pixels) {
        const std::string found = ZelFileUtils::FindAsset(path);
        if (!found.empty()) ZEL_LOG_ERROR("ERROR: style asset %s cannot be read", found.c_str());
    }
    return asset;
}

}  // namespace zellab
