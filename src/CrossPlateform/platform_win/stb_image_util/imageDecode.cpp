#include "CrossPlateform/platform_win/stb_image_util/imageDecode.h"

#include <cstddef>
#include <cstdint>

#include "CrossPlateform/platform_win/stb_image_util/jpegTables.h"
#include "platform/memoryInfo.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

namespace {

/// The most that one allocation of the decoder may take, while a picture is decoded on this thread. A file
/// whose packed data unpacks to far more than its head announces fails there, not in the machine's memory.
thread_local std::size_t t_largestAllocation = SIZE_MAX;

void* decoderMalloc(std::size_t bytes) {
    return bytes <= t_largestAllocation ? std::malloc(bytes) : nullptr;
}

void* decoderRealloc(void* old, std::size_t bytes) {
    return bytes <= t_largestAllocation ? std::realloc(old, bytes) : nullptr;
}

class AllocationLimit {
public:
    explicit AllocationLimit(std::size_t bytes) : m_previous(t_largestAllocation) {
        t_largestAllocation = bytes;
    }
    ~AllocationLimit() { t_largestAllocation = m_previous; }
    AllocationLimit(const AllocationLimit&) = delete;
    AllocationLimit& operator=(const AllocationLimit&) = delete;

private:
    std::size_t m_previous;
};

}  // namespace

}  // namespace zellab

// The decoder, compiled here and seen nowhere else. No known format but PNG can hold a longer side.
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_NO_STDIO
#define STBI_MAX_DIMENSIONS (1 << 16)
#define STBI_MALLOC(bytes) zellab::decoderMalloc(bytes)
#define STBI_REALLOC(old, bytes) zellab::decoderRealloc(old, bytes)
#define STBI_FREE(old) std::free(old)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wunused-but-set-variable"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#include <stb/stb_image.h>
#pragma GCC diagnostic pop

namespace zellab {

namespace {

/// Pictures up to this many pixels are decoded whatever their head says: they do not hurt.
constexpr std::size_t kHarmlessPixels = std::size_t{4} << 20;

/// The most memory the decoder holds for a pixel at one time, result included, on its hungriest road
/// (a progressive JPEG or a deep PNG).
constexpr std::size_t kPeakBytesPerPixel = 16;

/// What one allocation may take beside the picture itself.
constexpr std::size_t kFreeAllocation = std::size_t{64} << 20;

/// How many pixels one byte of a file can stand for at the very most.
std::size_t mostPixelsPerByte(const unsigned char* data, int size) {
    const auto startsWith = [=](unsigned char first, unsigned char second) {
        return size >= 2 && data[0] == first && data[1] == second;
    };
    if (startsWith(0xFF, 0xD8)) return 1024;  // JPEG: one bit for a block of each of two components
    if (startsWith('B', 'M')) return 8;       // BMP: one bit a pixel, never packed
    return 8256;                              // deflate packs 1032 to 1, at best eight pixels to the byte
}

/// A PNM file with two bytes a sample: the decoder converts it as if it had one, and reads past its own
/// buffer. Such files are turned away.
bool isDeepPnm(const unsigned char* data, int size) {
    return data[0] == 'P' && stbi_is_16_bit_from_memory(data, size);
}

/// False where a head claims a large picture that the file's bytes or the machine's memory cannot hold.
bool isPlausible(std::size_t pixels, const unsigned char* data, int size) {
    if (pixels <= kHarmlessPixels) return true;
    const std::size_t held = static_cast<std::size_t>(size) * mostPixelsPerByte(data, size);
    return pixels <= held && pixels <= platform::physicalMemory() / kPeakBytesPerPixel;
}

}  // namespace

ImageBuffer decodeImage(const unsigned char* data, int size, int& width, int& height, int& channels) {
    if (isDeepPnm(data, size) || !hasSoundHuffmanTables(data, static_cast<std::size_t>(size))) return nullptr;
    int claimedWidth = 0, claimedHeight = 0, claimedChannels = 0;
    std::size_t pixels = 0;
    const AllocationLimit headLimit(kFreeAllocation);
    if (stbi_info_from_memory(data, size, &claimedWidth, &claimedHeight, &claimedChannels) &&
        claimedWidth > 0 && claimedHeight > 0)
        pixels = static_cast<std::size_t>(claimedWidth) * static_cast<std::size_t>(claimedHeight);
    if (!isPlausible(pixels, data, size)) return nullptr;

    const AllocationLimit limit(kFreeAllocation + pixels * kPeakBytesPerPixel +
                                static_cast<std::size_t>(size) * 4);
    return ImageBuffer(stbi_load_from_memory(data, size, &width, &height, &channels, ImageView::kChannels));
}

}  // namespace zellab
