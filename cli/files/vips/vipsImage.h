#pragma once

#include <vips/vips.h>

#include <memory>
#include "cli/failure.h"

namespace zelcli {

struct VipsUnref {
    void operator()(VipsImage* image) const { g_object_unref(image); }
};
using VipsPicture = std::unique_ptr<VipsImage, VipsUnref>;

/// What libvips says about a failure, in one line and without its operation's name.
class VipsFailure : public Failure {
    using Failure::Failure;
};

/// Sets libvips up on first need, which takes 30 ms. Throws Failure.
void startVips();

/// Throws VipsFailure where `status` is not 0.
void requireVips(int status);

/// Runs an operation that makes an image: made([&](VipsImage** out) { return vips_...(in, out, nullptr); }).
/// Throws VipsFailure.
template <typename Operation>
VipsPicture made(const Operation& operation) {
    VipsImage* out = nullptr;
    requireVips(operation(&out));
    return VipsPicture(out);
}

/// Replaces the image by what an operation makes of it.
template <typename Operation>
void change(VipsPicture& picture, const Operation& operation) {
    picture = made([&](VipsImage** out) { return operation(picture.get(), out); });
}

}  // namespace zelcli
