#include "CrossPlateform/platform_win/stb_image_util/imageScramble.h"

#include <array>
#include <cstdint>

namespace zellab {

namespace {

/// The key as it meets a whole little-endian word, lowest byte first: 0x5C1E27D6.
constexpr std::array<unsigned char, 4> kKey = {0xD6, 0x27, 0x1E, 0x5C};

/// Which key bytes meet the bytes that follow the last whole word, by their number. The lowest byte of the
/// key serves whole words only.
constexpr std::array<std::array<unsigned char, 3>, 4> kTailKeys = {{
    {},
    {kKey[3]},
    {kKey[2], kKey[3]},
    {kKey[2], kKey[3], kKey[1]},
}};

}  // namespace

bool hasScrambleHead(const unsigned char* data, std::size_t size) {
    std::uint32_t length = 0;
    for (std::size_t i = 0; i < kScrambleHeadBytes && i < size; ++i)
        length |= static_cast<std::uint32_t>(data[i]) << (8 * i);
    // The sum wraps: a head that counts nearly 4 GiB fails.
    return static_cast<std::uint32_t>(length + kScrambleHeadBytes) >= size;
}

bool unscrambleImageData(unsigned char* data, std::ptrdiff_t size) {
    if (!data || size < 1) return false;
    const std::ptrdiff_t whole = size / 4 * 4;
    for (std::ptrdiff_t word = 0; word < whole; word += 4)
        for (std::ptrdiff_t i = 0; i < 4; ++i) data[word + i] ^= kKey[static_cast<std::size_t>(i)];
    const auto& tailKeys = kTailKeys[static_cast<std::size_t>(size - whole)];
    for (std::ptrdiff_t i = 0; i < size - whole; ++i)
        data[whole + i] ^= tailKeys[static_cast<std::size_t>(i)];
    return true;
}

}  // namespace zellab
