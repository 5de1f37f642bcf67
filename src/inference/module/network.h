#pragma once

#include "inference/networkModule.h"

/// Networks of the table; see there.
namespace zel::module {

ZelNetwork* openNetwork(const unsigned char* file, size_t size, char* reason, size_t reasonSize) noexcept;
int runNetwork(ZelNetwork* network, const ZelNetworkArray* input, const char* const* outputNames,
               size_t outputCount, int threads, ZelNetworkOutputs* outputs, char* reason,
               size_t reasonSize) noexcept;
void closeNetwork(ZelNetwork* network) noexcept;

}  // namespace zel::module
