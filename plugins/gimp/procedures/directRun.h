#pragma once

#include <string>

#include "gimp/picture/targetLayer.h"
#include "gimp/run/request.h"

namespace zelgimp {

/// Runs an effect without a window; progress is told to the editor.
/// @param facesFile  empty: the faces that the picture keeps, or those that are found and kept from now on
/// Throws Refusal or libzel::Error, and then nothing was changed.
void runDirectly(const Request& request, const std::string& facesFile, const TargetLayer& layer);

}  // namespace zelgimp
