#pragma once

#include <string>
#include <vector>

namespace zelcli {

/// What the user typed for `zel depth`.
struct DepthOptions {
    std::vector<std::string> inputs;
    std::string output;
    std::string mask, personMask, compare, assets;  // empty: not given
    std::vector<std::string> assignments;           // --set
    unsigned jobs = 0;                              // 0: as many as this machine does well
    bool recursive = false;
    bool raw = false, quiet = false, verbose = false;
};

/// Estimates the depth of every input. Throws UsageError before any work; returns kDone or kWorkFailed.
int runDepth(const DepthOptions& options);

}  // namespace zelcli
