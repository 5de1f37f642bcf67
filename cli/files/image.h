#pragma once

#include <memory>
#include <vector>

#include "cli/files/origin.h"

namespace zelcli {

/// A picture in memory: tightly packed RGBA in sRGB, top row first and upright.
struct Image {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> rgba;            // 4 * width * height bytes
    std::shared_ptr<const Origin> origin = {};  // null for a picture that was drawn
};

/// A one-byte-a-pixel picture.
struct Mask {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> samples;  // width * height bytes
};

}  // namespace zelcli
