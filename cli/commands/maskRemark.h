#pragma once

#include <string>

#include "cli/files/image.h"

namespace zelcli {

/// What a user should know of a mask that was given for a picture: another size, or nothing or all of it marked. Empty:
/// nothing.
std::string maskRemark(const Mask& mask, const Image& image);

}  // namespace zelcli
