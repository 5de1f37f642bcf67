#include "inference/module/cascade.h"
#include "inference/module/network.h"

extern "C" [[gnu::visibility("default")]] const ZelNetworkModule* zelNetworkModule() {
    using namespace zel::module;
    static const ZelNetworkModule table{
        ZEL_NETWORK_MODULE_ABI, openNetwork, runNetwork, closeNetwork, openCascade,
        searchCascade,          closeCascade};
    return &table;
}
