#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zelcli {

/// What the head of a picture file tells beside the pixels.
struct FileMeta {
    std::uint64_t width = 0, height = 0;  // as claimed; not yet checked
    bool deepSamples = false;             // more than 8 bits a channel
    bool cmyk = false;                    // four ink channels
    std::vector<unsigned char> exif;      // from "II" or "MM" on; empty where there is none
    std::vector<unsigned char> iccProfile;
};

}  // namespace zelcli
