#pragma once

#include "beautykernel/facefleckcleaner/faceCrop.h"

namespace zellab {

/// Takes the features out of a crop's skin mask: eyes and mouth with a rim of skin, brows, nose, the bridge
/// between the eyes become 1, which is too little for the search but still skin to fill from. Outside the
/// face's outline the mask becomes 0.
/// @param noseBridge  also take out the ridge of the nose
void excludeFeatures(FaceCrop& crop, bool noseBridge);

/// The same for the fine search: eyes, brows, nose and mouth with their rims become 100, where a spot may
/// reach but not lie, and the features themselves 0, where nothing is changed. What lies between the eyes and
/// the nose becomes 1, which turns away every spot that touches it.
void excludeFeaturesFinely(FaceCrop& crop, bool noseBridge);

}  // namespace zellab
