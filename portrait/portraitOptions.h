#pragma once

#include <functional>
#include <string>
#include <vector>

#include "portrait.h"

namespace zel {

/// One parameter of the synthetic portrait by name, for `--set NAME=VALUE`.
struct PortraitOption {
    std::string name;
    std::string help;                                              // one line
    double minimum = 0, maximum = 0;                               // of a number; both 0 for a choice
    bool whole = false;                                            // the number has no fraction
    std::vector<std::string> choices;                              // the accepted words, empty for a number
    std::function<void(PortraitParams&, const std::string&)> set;  // throws std::invalid_argument
};

/// Every parameter but width, height and seed.
const std::vector<PortraitOption>& portraitOptions();

/// Sets one option. Throws std::invalid_argument with one line of text for an unknown name, a word that is no
/// choice, or a number that is none or lies outside the range.
void setPortraitOption(PortraitParams& params, const std::string& name, const std::string& value);

}  // namespace zel
