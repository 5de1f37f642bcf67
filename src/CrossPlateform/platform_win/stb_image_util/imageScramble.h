#pragma once

#include <cstddef>

namespace zellab {

/// A scrambled image file: four bytes with the length of the rest (little-endian), then the image file with
/// every byte scrambled.
constexpr std::size_t kScrambleHeadBytes = 4;

/// True where the head counts at least the bytes that follow it. A coarse test: plain PNG and JPEG files
/// pass as well, and only the caller knows which kind a file is. Bytes past the end count as 0.
bool hasScrambleHead(const unsigned char* data, std::size_t size);

/// Scrambles or unscrambles in place; the routine is its own inverse. False where there is nothing to do.
bool unscrambleImageData(unsigned char* data, std::ptrdiff_t size);

}  // namespace zellab
