#pragma once

#include "cli/files/image.h"

namespace zelcli {

/// A depth map in colours for the eye: deep blue is far, then teal, green and yellow, and warm white is near.
/// Brightness rises all along, so that it reads in grey as well.
Image colourDepth(const Mask& depth);

}  // namespace zelcli
