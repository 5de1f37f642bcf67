#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace zeltest {

/// The folder with the network files: the one that ZEL_NETWORKS names, else the build tree's. Empty where there
/// are none; tests that need them are skipped then.
inline std::string networksForTests() {
    const char* const told = std::getenv("ZEL_NETWORKS");
    const std::filesystem::path folder =
        told && *told ? std::filesystem::path(told) : std::filesystem::path(ZEL_ASSETS) / "networks";
    return std::filesystem::exists(folder / "faceDetector.onnx") ? folder.string() : std::string();
}

}  // namespace zeltest
