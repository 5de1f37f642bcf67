#pragma once

#include <map>
#include <string>
#include <vector>

#include "libzel/effect.h"

namespace zel {

/// Every effect, in the order of menus.
const std::vector<Effect>& allEffects();

/// The effect of this name. Throws ZEL_UNKNOWN_NAME, which tells the nearest.
const Effect& findEffect(const std::string& name);

/// Checks values by name against an effect's parameters and fills in the defaults. Values are stored in one
/// canonical spelling (switches as "true" or "false"). Throws ZEL_UNKNOWN_NAME or ZEL_BAD_VALUE.
ParameterValues checkedValues(const Effect& effect, const std::map<std::string, std::string>& given);

}  // namespace zel
