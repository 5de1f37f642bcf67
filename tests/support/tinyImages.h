#pragma once

#include "support/randomImage.h"

namespace zeltest {

inline void appendLittle(Bytes& to, unsigned value, int bytes) {
    for (int i = 0; i < bytes; ++i) to.push_back(static_cast<unsigned char>(value >> (8 * i)));
}

inline void appendBig(Bytes& to, unsigned value, int bytes) {
    for (int i = bytes - 1; i >= 0; --i) to.push_back(static_cast<unsigned char>(value >> (8 * i)));
}

/// An uncompressed 32-bit TGA file, top row first: RGBA pixels survive it byte for byte.
inline Bytes tgaFile(int width, int height, const Bytes& rgba) {
    Bytes file = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    appendLittle(file, static_cast<unsigned>(width), 2);
    appendLittle(file, static_cast<unsigned>(height), 2);
    file.insert(file.end(), {32, 0x28});
    for (std::size_t i = 0; i + 3 < rgba.size(); i += 4)
        file.insert(file.end(), {rgba[i + 2], rgba[i + 1], rgba[i], rgba[i + 3]});
    return file;
}

/// The head of a BMP, GIF, JPEG, PNG or TGA file that announces that size, with nothing behind it.
inline Bytes bmpHead(unsigned width, unsigned height) {
    Bytes file = {'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0, 40, 0, 0, 0};
    appendLittle(file, width, 4);
    appendLittle(file, height, 4);
    file.insert(file.end(), {1, 0, 24, 0});
    file.resize(54, 0);
    return file;
}

inline Bytes gifHead(unsigned width, unsigned height) {
    Bytes file = {'G', 'I', 'F', '8', '9', 'a'};
    appendLittle(file, width, 2);
    appendLittle(file, height, 2);
    file.insert(file.end(), {0, 0, 0, 0x2C, 0, 0, 0, 0, 1, 0, 1, 0, 0, 2, 1, 0x44, 0, 0x3B});
    return file;
}

inline Bytes jpegHead(unsigned width, unsigned height) {
    Bytes file = {0xFF, 0xD8, 0xFF, 0xC0, 0, 11, 8};
    appendBig(file, height, 2);
    appendBig(file, width, 2);
    file.insert(file.end(), {1, 1, 0x11, 0, 0xFF, 0xDA, 0, 8, 1, 1, 0, 0, 63, 0});
    return file;
}

/// The chunks carry a checksum of 0.
inline Bytes pngHead(unsigned width, unsigned height) {
    Bytes file = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13, 'I', 'H', 'D', 'R'};
    appendBig(file, width, 4);
    appendBig(file, height, 4);
    file.insert(file.end(), {8, 6, 0, 0, 0, 0, 0, 0, 0});
    file.insert(file.end(), {0, 0, 0, 2, 'I', 'D', 'A', 'T', 0x78, 0x9C, 0, 0, 0, 0});
    file.insert(file.end(), {0, 0, 0, 0, 'I', 'E', 'N', 'D', 0, 0, 0, 0});
    return file;
}

inline Bytes tgaHead(unsigned width, unsigned height) {
    return tgaFile(static_cast<int>(width), static_cast<int>(height), {});
}

}  // namespace zeltest
