#pragma once

#include <cstdio>

/// Writes the colours of RGBA pixels as a PPM file, which needs no library. @return whether it was written
inline bool writePpm(const char* path, const unsigned char* rgba, int width, int height) {
    std::FILE* file = std::fopen(path, "wb");
    if (!file) return false;
    std::fprintf(file, "P6 %d %d 255\n", width, height);
    const unsigned char* const end =
        rgba + 4 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    for (; rgba != end; rgba += 4) std::fwrite(rgba, 1, 3, file);
    const bool written = !std::ferror(file);
    return std::fclose(file) == 0 && written;
}
