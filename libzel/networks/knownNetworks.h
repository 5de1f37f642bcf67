#pragma once

#include <span>
#include <string>
#include <string_view>

namespace zel {

/// A network that this library was built for. No other is run under its name.
struct KnownNetwork {
    const char* file;      // below its folder
    const char* purpose;   // "finds faces"
    std::string_view sum;  // SHA-256 of the file; empty: any file is taken
};

/// Those for faces and persons, which scripts/networks sets up in one folder, see networkFolder.h.
std::span<const KnownNetwork> knownNetworks();

/// The project's own, below the folder with the assets.
const KnownNetwork& depthNetwork();

/// What a file of that name must be; empty where any is taken.
std::string_view sumOf(std::string_view file);

}  // namespace zel
