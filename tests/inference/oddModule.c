/* Modules that the loader must turn away: one of another version, and one of another kind. In C, which the header
   must be. */
#include "inference/networkModule.h"

#ifdef ZEL_OTHER_KIND
__attribute__((visibility("default"))) int zelOtherKind(void) {
    return 0;
}
#else
__attribute__((visibility("default"))) const ZelNetworkModule* zelNetworkModule(void) {
    static const ZelNetworkModule table = {.abi = ZEL_NETWORK_MODULE_ABI + 1};
    return &table;
}
#endif
