#include "zel/zel.h"

// In the shared library alone, with its version.
const char* zel_version(void) {
    return ZEL_VERSION;
}
