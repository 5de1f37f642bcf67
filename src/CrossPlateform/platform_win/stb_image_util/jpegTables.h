#pragma once

#include <cstddef>

namespace zellab {

/// False where a JPEG file defines a Huffman table of more than 256 symbols. The decoder writes such a
/// table past its room, so these files must not reach it. Files of other kinds pass.
bool hasSoundHuffmanTables(const unsigned char* data, std::size_t size);

}  // namespace zellab
