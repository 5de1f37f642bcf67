#pragma once

#include <string>

namespace zel {

/// The folder with the network files, of which some or all may be missing: the one that the environment variable
/// ZEL_NETWORKS names, there or not (set and empty: none), else `networks` below the folder with the assets, else
/// zel_effects/networks in the user's data folder.
/// @param assets  the folder with the assets; empty where there is none
/// @return absolute, or as the variable tells it; empty where there is none
std::string networkFolder(const std::string& assets);

/// Why there are no networks to be had from that folder, in a few words, and what brings them.
std::string networkFolderHint(const std::string& folder);

}  // namespace zel
