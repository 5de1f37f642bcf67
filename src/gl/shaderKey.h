#pragma once

#include <array>
#include <cstdint>

namespace zellab::gl {

/// The key of the shader file, for the library that reads it and for the tool that writes it.
inline constexpr std::array<std::uint8_t, 16> kShaderFileKey = {
    0x9E, 0x41, 0x7C, 0x05, 0xD3, 0x68, 0xB2, 0x1F, 0x3A, 0xC7, 0x54, 0xE9, 0x80, 0x2B, 0xF6, 0x6D};

}  // namespace zellab::gl
