#pragma once

#include "inference/networkModule.h"

/// Cascades of the table; see there.
namespace zel::module {

ZelCascade* openCascade(const char* path, char* reason, size_t reasonSize) noexcept;
int searchCascade(ZelCascade* cascade, const ZelCascadeSearch* search, ZelCascadeBoxes* found, char* reason,
                  size_t reasonSize) noexcept;
void closeCascade(ZelCascade* cascade) noexcept;

}  // namespace zel::module
