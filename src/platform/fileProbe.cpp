#include "platform/fileProbe.h"

#include <unistd.h>

namespace zellab::platform {

bool pathExists(const char* path) {
    return access(path, F_OK) == 0;
}

}  // namespace zellab::platform
