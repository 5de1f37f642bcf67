#pragma once

#include "cli/studio/message.h"

namespace zelcli::studio {

/// Every effect with what a page needs to make its controls.
Json registryJson();

}  // namespace zelcli::studio
