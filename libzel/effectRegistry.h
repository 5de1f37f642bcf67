#pragma once

#include <string>
#include <utility>
#include <vector>

#include "effect.h"

namespace zel {

/// What the user typed cannot be understood; the text is one line. The command exits with status 2.
class UsageError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Every effect of the command, in the order in which `zel effects` lists them.
const std::vector<Effect>& allEffects();

/// The effect of this name; throws a UsageError that suggests the nearest name.
const Effect& findEffect(const std::string& name);

/// Checks "NAME=VALUE" words against the effect's parameters and fills in the defaults. Values are stored in
/// one canonical spelling (toggles as "true" or "false"). The last word for a name counts. Throws UsageError.
ParameterValues parseValues(const Effect& effect, const std::vector<std::string>& assignments);

/// The range and default of a parameter in words: "0..10, default 5".
std::string describeRange(const Parameter& parameter);

}  // namespace zel
