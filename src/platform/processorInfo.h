#pragma once

namespace zellab::platform {

/// Number of logical processors that this process may use, at least 1.
int logicalProcessors();

}  // namespace zellab::platform
