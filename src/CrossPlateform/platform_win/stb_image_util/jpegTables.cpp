#include "CrossPlateform/platform_win/stb_image_util/jpegTables.h"

#include <algorithm>
#include <numeric>

namespace zellab {

namespace {

constexpr unsigned char kMarkerStart = 0xFF;
constexpr unsigned char kHuffmanTables = 0xC4, kEndOfImage = 0xD9;
constexpr std::size_t kCodeLengths = 16;
constexpr std::size_t kMostSymbols = 256;

/// A marker that stands alone: stuffed zeros, fill bytes, restarts, start and end of the image.
bool hasNoSegment(unsigned char marker) {
    return marker == 0 || marker == kMarkerStart || (marker >= 0xD0 && marker <= kEndOfImage);
}

/// The tables of one segment of `length` bytes: a byte of class and number, the count of symbols of each
/// code length, the symbols. The decoder reads a whole table also where the segment ends within it, and
/// zeros behind the end of the file.
bool areSound(const unsigned char* data, std::size_t size, std::size_t length) {
    for (std::size_t at = 0; at < length && at < size;) {
        const std::size_t counts = std::min(at + 1, size), symbols = std::min(counts + kCodeLengths, size);
        const std::size_t sum = std::accumulate(data + counts, data + symbols, std::size_t{0});
        if (sum > kMostSymbols) return false;
        at += 1 + kCodeLengths + sum;
    }
    return true;
}

}  // namespace

bool hasSoundHuffmanTables(const unsigned char* data, std::size_t size) {
    if (size == 0 || data[0] != kMarkerStart) return true;
    // Every byte that could begin a marker is looked at, in packed picture data as well: the decoder looks
    // for markers in more places than the format allows. Only whole segments are stepped over.
    std::size_t at = 0;
    while (at + 4 <= size) {
        const unsigned char marker = data[at + 1];
        if (data[at] != kMarkerStart || hasNoSegment(marker)) {
            ++at;
            continue;
        }
        // The length counts its own two bytes.
        const std::size_t length =
            std::max<std::size_t>(static_cast<std::size_t>(data[at + 2]) << 8 | data[at + 3], 2) - 2;
        at += 4;
        if (marker == kHuffmanTables && !areSound(data + at, size - at, length)) return false;
        at += std::min(length, size - at);
    }
    return true;
}

}  // namespace zellab
