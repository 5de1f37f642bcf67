#pragma once

#include <string>
#include <vector>

namespace zelcli {

/// What the user typed for `zel portrait`.
struct PortraitOptions {
    std::string output;
    std::string faces, truth;  // empty: not given
    std::string size = "900x1200";
    unsigned seed = 1;
    std::vector<std::string> assignments;  // --set
    bool quiet = false;
};

/// Draws the portrait and writes what was asked for. Throws UsageError before any work; returns kDone or
/// kWorkFailed.
int runPortrait(const PortraitOptions& options);

/// The parameters for --set, one a line, for --help.
std::string portraitParameterLines();

/// Name and text ("0 to 1, strength of freckles") of each parameter, for the manual page.
std::vector<std::pair<std::string, std::string>> portraitParameterTexts();

}  // namespace zelcli
