// The image loader that hosts call: check, read, decode, limit, flatten.
#include "CrossPlateform/platform_win/stb_image_util/alphaFlatten.h"
#include "CrossPlateform/platform_win/stb_image_util/imageDecode.h"
#include "CrossPlateform/platform_win/stb_image_util/imageFile.h"
#include "CrossPlateform/platform_win/stb_image_util/imageScramble.h"
#include "CrossPlateform/platform_win/stb_image_util/sizeLimit.h"
#include "frame/zel_log.h"
#include "zel_effects/zel_effects.h"

namespace ZelImageCore {

namespace {

// The names that the log's lines give.
constexpr char kFromFile[] = "ZelImageCore::StbImageUtil::loadImageFromFile";
constexpr char kFromMemory[] = "ZelImageCore::StbImageUtil::loadImageFromMemory";
constexpr char kHeadTest[] = "ZelImageCore::StbImageUtil::IsEncryptImageWithHead";

}  // namespace

bool StbImageUtil::IsEncryptImageWithHead(char* data, unsigned long size) {
    if (!data || size == 0) {
        ZEL_LOG_ERROR("%s(%d) param error.", kHeadTest, __LINE__);
        return false;
    }
    return zellab::hasScrambleHead(reinterpret_cast<const unsigned char*>(data), size);
}

unsigned char* StbImageUtil::loadImageFromFile(const std::string& path, int& width, int& height,
                                               int& channels, bool scrambled, bool keepAlpha, int maxSize,
                                               bool reserved, void*) {
    const zellab::FileBytes file = zellab::readImageFile(path.c_str());
    if (!file.data) {
        ZEL_LOG_ERROR("%s(%d) read file fail: %s.", kFromFile, __LINE__, path.c_str());
        return nullptr;
    }
    unsigned char* data = file.data.get();
    int size = file.size;
    const bool hasHead =
        IsEncryptImageWithHead(reinterpret_cast<char*>(data), static_cast<unsigned long>(size));
    if (hasHead && scrambled) {
        // A file shorter than its head leaves a size below 0, which the memory form turns away.
        size -= static_cast<int>(zellab::kScrambleHeadBytes);
        if (size > 0) data += zellab::kScrambleHeadBytes;
        zellab::unscrambleImageData(data, size);
    }
    unsigned char* pixels =
        loadImageFromMemory(data, size, width, height, channels, keepAlpha, maxSize, reserved);
    if (!pixels) ZEL_LOG_ERROR("%s(%d) loadImageFromMemory fail: %s.", kFromFile, __LINE__, path.c_str());
    ZEL_LOG_INFO("%s(%d) stb load image: %s. w:%d, h:%d", kFromFile, __LINE__, path.c_str(), width, height);
    return pixels;
}

unsigned char* StbImageUtil::loadImageFromMemory(unsigned char* data, int size, int& width, int& height,
                                                 int& channels, bool keepAlpha, int maxSize, bool) {
    if (!data || size <= 0) {
        ZEL_LOG_ERROR("%s(%d) param error.", kFromMemory, __LINE__);
        return nullptr;
    }
    zellab::ImageBuffer pixels = zellab::decodeImage(data, size, width, height, channels);
    if (!pixels) {
        ZEL_LOG_ERROR("%s(%d) stbi_load_from_memory fail.", kFromMemory, __LINE__);
        return nullptr;
    }
    // The host is told the decoded size, also where the picture is reduced.
    const zellab::ImageSize decoded{width, height};
    zellab::ImageSize held = decoded;
    if (maxSize > 0) held = zellab::maxSizeAdjust(pixels, decoded, maxSize);
    if (!keepAlpha) pixels = zellab::alphaAdjust(std::move(pixels), decoded, held);
    return pixels.release();
}

}  // namespace ZelImageCore
