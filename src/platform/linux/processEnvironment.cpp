#include "platform/processEnvironment.h"

#include <cstdlib>

namespace zellab::platform {

namespace {

std::optional<std::string> optional(const char* text) {
    return text ? std::optional<std::string>(text) : std::nullopt;
}

}  // namespace

std::optional<std::string> environmentText(const char* name) {
    return optional(std::getenv(name));
}

std::optional<std::string> trustedEnvironment(const char* name) {
    return optional(secure_getenv(name));
}

std::filesystem::path userDataFolder() {
    // A relative one does not count.
    if (const auto told = trustedEnvironment("XDG_DATA_HOME");
        told && std::filesystem::path(*told).is_absolute())
        return *told;
    if (const auto home = trustedEnvironment("HOME"); home && std::filesystem::path(*home).is_absolute())
        return std::filesystem::path(*home) / ".local/share";
    return {};
}

}  // namespace zellab::platform
