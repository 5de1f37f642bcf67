#pragma once

#include <string>

#include "zel/zel.h"

namespace zelcli {

/// Every effect with its parameters, for reading.
std::string effectsTable();

/// The same as JSON, for scripts:
/// {"effects": [{"name", "operation", "summary", "advice", "example", "faces", "mask", "second",
///   "parameters": [{"name", "kind", "default", "help", "minimum", "maximum", "choices"}]}]}.
/// faces, mask and second say "no", "optional" or "required"; minimum and maximum are there for numbers with
/// a range, choices for choices; a default of null must be given.
std::string effectsJson();

/// The help of one effect: what it does, what it takes, an example.
std::string effectHelp(const zel_effect& effect);

}  // namespace zelcli
