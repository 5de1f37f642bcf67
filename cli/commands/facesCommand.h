#pragma once

#include <string>
#include <vector>

namespace zelcli {

/// What the user typed for `zel faces`.
struct FacesOptions {
    std::vector<std::string> inputs;
    std::string output, overlay;  // overlay empty: not asked for
    unsigned jobs = 1;
    bool quiet = false;
};

/// Finds the faces of every input. Throws UsageError before any work; returns kDone or kWorkFailed.
int runFaces(const FacesOptions& options);

}  // namespace zelcli
