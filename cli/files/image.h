#pragma once

#include <vector>

namespace zelcli {

/// A picture in memory: tightly packed RGBA, top row first, with what the file carried beside its pixels.
struct Image {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> rgba;  // 4 * width * height bytes
    std::vector<unsigned char> exif;  // raw block, empty where there was none; orientation already applied
    std::vector<unsigned char> iccProfile;  // raw colour profile, empty where there was none
};

/// A one-byte-a-pixel picture.
struct Mask {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> samples;  // width * height bytes
};

}  // namespace zelcli
