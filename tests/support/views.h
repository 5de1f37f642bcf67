#pragma once

#include "zellab/imageproc/core/imageView.h"

namespace zeltest {

/// Calls body(view) with tightly packed samples as a picture (four channels) or as a plane (one).
template <typename Byte, typename Body>
auto withView(Byte* samples, int width, int height, int channels, const Body& body) {
    return channels == 4 ? body(zellab::RgbaView<Byte>(samples, width, height))
                         : body(zellab::PlaneView<Byte>(samples, width, height));
}

}  // namespace zeltest
