#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace zellab::platform {

/// A variable of the environment, in UTF-8 where the system has an encoding for it; nothing where it is not set.
std::optional<std::string> environmentText(const char* name);

/// The same for a variable that may name code to run: nothing in a process with more rights than the user who
/// started it.
std::optional<std::string> trustedEnvironment(const char* name);

/// The folder for what programs keep for this user; empty where the system tells none.
std::filesystem::path userDataFolder();

}  // namespace zellab::platform
