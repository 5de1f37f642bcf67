#pragma once

#include <span>

#include "cli/files/origin.h"

namespace zelcli {

bool isJpeg(std::span<const unsigned char> file);

/// Quality, subsampling and kind of a JPEG file, as far as its head tells them.
void readJpegTraits(std::span<const unsigned char> file, Traits& traits);

}  // namespace zelcli
