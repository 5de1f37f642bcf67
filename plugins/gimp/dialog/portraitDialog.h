#pragma once

#include "gimp/picture/targetLayer.h"
#include "zel/zel.h"

namespace zelgimp {

/// The dialog of all effects, on one layer. Comes back when it is closed.
/// @param effect  the one that is chosen at first; null: that of the last time, or the first
/// @return whether the layer was changed
bool runDialog(const TargetLayer& layer, const zel_effect* effect);

}  // namespace zelgimp
