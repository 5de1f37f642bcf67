#include "CrossPlateform/platform_win/stb_image_util/imageDecode.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "CrossPlateform/platform_win/stb_image_util/hdrRows.h"
#include "CrossPlateform/platform_win/stb_image_util/jpegTables.h"
#include "platform/memoryInfo.h"
#include "zellab/imageproc/core/imageView.h"

namespace zellab {

namespace {

/// The most that one allocation of the decoder may take, while a picture is decoded on this thread. A file
/// whose packed data unpacks to far more than its head announces fails there, not in the machine's memory.
thread_local std::size_t t_largestAllocation = SIZE_MAX;

// The decoder's memory is zeroed. Of many files that are cut short it returns the whole picture all the same,
// and what the file does not hold must be black, not what the process had there before.
void* decoderMalloc(std::size_t bytes) {
    return bytes <= t_largestAllocation ? std::calloc(bytes, 1) : nullptr;
}

void* decoderRealloc(void* old, std::size_t oldBytes, std::size_t bytes) {
    if (bytes > t_largestAllocation) return nullptr;
    auto* grown = static_cast<unsigned char*>(std::realloc(old, bytes));
    if (grown && bytes > oldBytes) std::memset(grown + oldBytes, 0, bytes - oldBytes);
    return grown;
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
#define STBI_REALLOC_SIZED(old, oldBytes, bytes) zellab::decoderRealloc(old, oldBytes, bytes)
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

/// False for the PNM files that must not reach the decoder: those with two bytes a sample, which it converts
/// as if there were one and so reads past its own buffer, and those that end early, of which it takes
/// nothing. Files of other kinds pass.
bool isSoundPnm(const unsigned char* data, int size) {
    stbi__context file;
    stbi__start_mem(&file, data, size);
    int width = 0, height = 0, channels = 0;
    const int bits = stbi__pnm_info(&file, &width, &height, &channels);
    if (bits != 8) return bits == 0;
    const std::ptrdiff_t left = file.img_buffer_end - file.img_buffer;
    return static_cast<std::size_t>(left) >= sampleCount(width, height, channels);
}

/// False where a head claims a large picture that the file's bytes or the machine's memory cannot hold.
bool isPlausible(std::size_t pixels, const unsigned char* data, int size) {
    if (pixels <= kHarmlessPixels) return true;
    const std::size_t held = static_cast<std::size_t>(size) * mostPixelsPerByte(data, size);
    return pixels <= held && pixels <= platform::physicalMemory() / kPeakBytesPerPixel;
}

}  // namespace

ImageBuffer decodeImage(const unsigned char* data, int size, int& width, int& height, int& channels) {
    const auto bytes = static_cast<std::size_t>(size);
    if (!isSoundPnm(data, size) || !hasSoundHuffmanTables(data, bytes) || !hasWholeHdrRows(data, bytes))
        return nullptr;
    int claimedWidth = 0, claimedHeight = 0, claimedChannels = 0;
    std::size_t pixels = 0;
    const AllocationLimit headLimit(kFreeAllocation);
    if (stbi_info_from_memory(data, size, &claimedWidth, &claimedHeight, &claimedChannels) &&
        claimedWidth > 0 && claimedHeight > 0)
        pixels = static_cast<std::size_t>(claimedWidth) * static_cast<std::size_t>(claimedHeight);
    if (!isPlausible(pixels, data, size)) return nullptr;

    const AllocationLimit limit(kFreeAllocation + pixels * kPeakBytesPerPixel + bytes * 4);
    return ImageBuffer(stbi_load_from_memory(data, size, &width, &height, &channels, ImageView::kChannels));
}

}  // namespace zellab
