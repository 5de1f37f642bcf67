#pragma once

#include <string>

namespace zelcli {

struct NetworksOptions {
    std::string assets;  // empty: found
    bool json = false;
};

/// What `zel networks` prints: which network files are there, where, and what each is for. Throws FileFailure where
/// `assets` is no folder.
std::string networksText(const NetworksOptions& options);

}  // namespace zelcli
