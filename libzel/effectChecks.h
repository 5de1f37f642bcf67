#pragma once

#include "libzel/effect.h"

/// What an effect's run function may ask of its inputs before it calls the library. Each throws a Failure
/// that tells both sizes or the missing thing.

namespace zel {

/// The mask, which must be of the picture's size.
const Mask& maskOfPictureSize(const EffectRun& run);

/// The second picture, which must be of the picture's size.
const Image& secondOfPictureSize(const EffectRun& run);

/// The face with this index.
const Face& faceAt(const EffectRun& run, int index);

}  // namespace zel
