#pragma once

#include <array>

#include "zellab/imageproc/core/imageView.h"

/// Point operations: pixels mapped through tables of 256 bytes. Bytes 0 to 2 change, alpha stays.

namespace zellab {

using ByteTable = std::array<Byte, 256>;

/// One table of 256 bytes for each of red, green and blue; none is null.
struct ChannelTables {
    const Byte* red;
    const Byte* green;
    const Byte* blue;
};

/// Maps every pixel of a valid view in place. The tables must not lie inside the picture.
void mapPixels(ImageView image, const ChannelTables& tables);

/// The same with one table for all three channels.
inline void mapPixels(ImageView image, const Byte* table) {
    mapPixels(image, {table, table, table});
}

/// Maps every sample of a valid plane in place.
void mapPlane(PlaneView<Byte> plane, const Byte* table);

}  // namespace zellab
