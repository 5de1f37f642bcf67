#pragma once

#include <array>

#include "zellab/imageproc/core/imageView.h"

/// Point operations: pixels mapped through tables of 256 bytes. Bytes 0 to 2 change, alpha stays.

namespace zellab {

using ByteTable = std::array<Byte, 256>;

/// The tables of red, green and blue, for the length of a call.
struct ChannelTables {
    const ByteTable &red, &green, &blue;
};

/// Maps every pixel of a valid view in place. The tables must not lie inside the picture.
void mapPixels(ImageView image, const ChannelTables& tables);

/// The same with one table for all three channels.
inline void mapPixels(ImageView image, const ByteTable& table) {
    mapPixels(image, ChannelTables{table, table, table});
}

/// Maps every sample of a valid plane in place.
void mapPlane(PlaneView<Byte> plane, const ByteTable& table);

}  // namespace zellab
