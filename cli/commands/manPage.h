#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace zelcli {

/// The manual page zel(1) in troff, from the grammar, the texts of --help and the list of effects.
std::string manPage(const CLI::App& app);

}  // namespace zelcli
