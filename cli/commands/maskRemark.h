#pragma once

#include <string>

#include "cli/files/image.h"

namespace zelcli {

/// Whether what was made for a picture of the other size fits one of this size, but for rounding.
bool sameProportions(int width, int height, int otherWidth, int otherHeight);

/// What a user should know of a mask that was given for a picture: another size, or nothing or all of it marked. Empty:
/// nothing.
std::string maskRemark(const Mask& mask, const Image& image);

}  // namespace zelcli
