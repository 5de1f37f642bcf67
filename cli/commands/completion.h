#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace zelcli {

/// What a shell ("bash", "zsh", "fish") completes, from the grammar and the list of effects.
std::string completion(const CLI::App& app, const std::string& shell);

}  // namespace zelcli
