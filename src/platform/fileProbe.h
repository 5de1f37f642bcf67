#pragma once

namespace zellab::platform {

/// True where something lies at the path, a directory included.
bool pathExists(const char* path);

}  // namespace zellab::platform
