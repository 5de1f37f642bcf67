#pragma once

#include "portrait/image.h"

namespace zel {

/// How much more brightness changes from one 8 by 8 block to the next than inside the blocks, in levels:
/// about 0 for a picture that never was a JPEG file, above 1 for one that was strongly compressed. The blocks
/// may begin at the picture's first pixel or, where a turn moved them, end at its last one.
double blockiness(const Image& image);

/// Makes slopes of the steps between the blocks of a strongly compressed picture, where both sides are
/// smooth; edges and texture stay. Does nothing where blockiness lies below half a level.
void softenBlockEdges(Image& image);

}  // namespace zel
