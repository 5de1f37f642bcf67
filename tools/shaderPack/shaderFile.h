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

/// The shaders of a key list ("0x5F6E410F name.frag" on a line, '#' before a remark), read from the list's
/// own folder. Throws std::runtime_error with the line's number for a line that is none, a key that comes
/// twice or is 0, and a file that cannot be read or is empty.
std::vector<Shader> readKeyList(const std::string& listPath);

}  // namespace shaderpack
