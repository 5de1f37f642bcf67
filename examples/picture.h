#pragma once

#include <zel_effects.h>

#include <cstdlib>
#include <memory>

/// RGBA pixels of a JPEG, PNG or PPM file, four bytes a pixel, top row first.
struct Picture {
    int width = 0, height = 0;
    std::unique_ptr<unsigned char, decltype(&std::free)> pixels{nullptr, &std::free};

    explicit Picture(const char* path) {
        int channels = 0;
        pixels.reset(ZelImageCore::StbImageUtil::loadImageFromFile(path, width, height, channels, false, true,
                                                                   0, false, nullptr));
    }
    explicit operator bool() const { return pixels != nullptr; }
};
