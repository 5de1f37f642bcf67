// The C interface through its wrapper for C++: nothing to release, and failures are exceptions.
// Usage: embedInCpp PORTRAIT OUT.ppm
#include <zel/zel.hpp>

#include "ppm.h"

int main(int argc, char** argv) try {
    if (argc != 3) return std::fprintf(stderr, "usage: embedInCpp PORTRAIT OUT.ppm\n"), 2;
    const libzel::Context context = libzel::createContext();
    const auto picture = libzel::made<libzel::Picture>(
        [&](zel_picture** out) { return zel_decode_file(context.get(), argv[1], nullptr, out); });
    const zel_pixels pixels = libzel::pixelsOf(picture.get());

    libzel::apply(context.get(), "nature-smooth", pixels, {{"radius", "12"}});
    libzel::apply(context.get(), "color-mixing", pixels, {{"contrast", "15"}, {"saturation", "10"}});

    const auto* const rgba = static_cast<const unsigned char*>(pixels.data);
    return writePpm(argv[2], rgba, pixels.width, pixels.height) ? 0 : 1;
} catch (const libzel::Error& error) {
    return std::fprintf(stderr, "embedInCpp: %s: %s\n", zel_status_name(error.status()), error.what()), 1;
}
