#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace shaderpack {

struct Shader {
    std::uint32_t key = 0;
    std::string text;
};

/// The bytes of a shader file: count, index of key, offset and size, then the texts, each ended by at least
/// one zero byte and enciphered.
std::vector<std::uint8_t> packShaders(const std::vector<Shader>& shaders);

/// The texts of all passes' shaders, from the folder that holds them. Throws std::runtime_error for a text
/// that cannot be read or is empty.
std::vector<Shader> readPassShaders(const std::string& folder);

}  // namespace shaderpack
