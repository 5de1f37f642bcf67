#pragma once

#include <vector>

namespace zel {

/// A picture in memory: tightly packed RGBA, top row first.
struct Image {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> rgba;  // 4 * width * height bytes
};

/// A one-byte-a-pixel picture.
struct Mask {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> samples;  // width * height bytes
};

}  // namespace zel
