#pragma once

#include <cstddef>

namespace zellab {

/// False where a Radiance HDR file does not hold all the rows that its head announces, or packs them in a way
/// that the decoder refuses. The decoder would go on reading zeros behind the end of such a file, for ever
/// within a packed row. Files of other kinds pass.
bool hasWholeHdrRows(const unsigned char* data, std::size_t size);

}  // namespace zellab
