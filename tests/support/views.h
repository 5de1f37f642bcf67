#pragma once

#include <type_traits>

#include "zellab/imageproc/core/imageView.h"

namespace zeltest {

/// Calls body(view) with tightly packed samples as a picture (four channels) or as a plane (one).
template <typename Byte, typename Body>
auto withView(Byte* samples, int width, int height, int channels, const Body& body) {
    return channels == 4 ? body(zellab::RgbaView<Byte>(samples, width, height))
                         : body(zellab::PlaneView<Byte>(samples, width, height));
}

/// The same for a scaler: body(from, to).
// NOLINTBEGIN(readability-non-const-parameter): the target is written through its view
template <typename Body>
bool withViews(const unsigned char* source, int sourceWidth, int sourceHeight, unsigned char* target,
               int targetWidth, int targetHeight, int channels, const Body& body) {
    return withView(source, sourceWidth, sourceHeight, channels, [&](auto from) {
        using To = std::conditional_t<std::is_same_v<decltype(from), zellab::ConstImageView>,
                                      zellab::ImageView, zellab::PlaneView<unsigned char>>;
        return body(from, To(target, targetWidth, targetHeight));
    });
}
// NOLINTEND(readability-non-const-parameter)

}  // namespace zeltest
