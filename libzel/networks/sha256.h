#pragma once

#include <span>
#include <string>

namespace zel {

/// The SHA-256 sum of bytes (FIPS 180-4), as sha256sum writes it: 64 small hexadecimal digits.
std::string sha256(std::span<const unsigned char> bytes);

}  // namespace zel
