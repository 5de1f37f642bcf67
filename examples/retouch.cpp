// Retouches a buffer: each call changes the pixels in place and keeps nothing.
// Usage: retouch PORTRAIT OUT.ppm
#include "picture.h"
#include "ppm.h"

int main(int argc, char** argv) {
    if (argc != 3) return std::fprintf(stderr, "usage: retouch PORTRAIT OUT.ppm\n"), 2;
    Picture picture(argv[1]);
    if (!picture) return std::fprintf(stderr, "%s cannot be read\n", argv[1]), 1;

    unsigned char* const pixels = picture.pixels.get();
    ZelImageCore::TableSkin::ImageProcessWithNatureSmooth(pixels, picture.width, picture.height, 12);
    if (!ZelImageCore::TableSkin::ImageProcessWithBright(pixels, picture.width, picture.height, 20, 3))
        return 1;

    return writePpm(argv[2], pixels, picture.width, picture.height) ? 0 : 1;
}
