#pragma once

#include <string>

namespace zelcli {

/// What the user typed for `zel studio`.
struct StudioOptions {
    std::string folder = ".";
    std::string assets;
    bool noBrowser = false, verbose = false;
};

/// Serves until the process is told to end. Returns the exit status.
int runStudio(const StudioOptions& options);

}  // namespace zelcli
