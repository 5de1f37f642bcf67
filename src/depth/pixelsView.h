#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Read-only pixels of four channels (RGBA) or one, rows tightly packed.
struct PixelsView {
    const Byte* data = nullptr;
    int width = 0, height = 0, channels = 0;

    PixelsView() = default;
    PixelsView(ConstImageView image)
        : data(image.data), width(image.width), height(image.height), channels(ConstImageView::kChannels) {}
    PixelsView(PlaneView<const Byte> plane)
        : data(plane.data), width(plane.width), height(plane.height), channels(1) {}
    PixelsView(ImageView image) : PixelsView(ConstImageView(image)) {}
    PixelsView(PlaneView<Byte> plane) : PixelsView(PlaneView<const Byte>(plane)) {}

    bool valid() const { return data && width > 0 && height > 0; }
};

}  // namespace zellab
