#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace zellab::gl {

inline constexpr std::size_t kAesBlock = 16;
using AesBlock = std::array<std::uint8_t, kAesBlock>;

/// Key lengths of the AES block cipher (FIPS 197).
enum class AesMode { aes128 = 0, aes192 = 1, aes256 = 2 };

/// AES on single blocks, without chaining. It keeps the shader texts from being read at a glance; it guards
/// no secret, and it is not hardened against an observer of its timing.
class Aes {
public:
    /// @param key  16, 24 or 32 bytes, as the mode says
    Aes(AesMode mode, std::span<const std::uint8_t> key);
    void encipher(AesBlock& block) const;
    void decipher(AesBlock& block) const;

private:
    void addRoundKey(AesBlock& block, int round) const;

    int m_rounds;
    /// One block for each round and one before the first: 176, 208 or 240 bytes.
    std::vector<std::uint8_t> m_schedule;
};

/// Block after block; the last one is filled up with zero bytes first. The result is a multiple of the block
/// long, empty for empty input.
std::vector<std::uint8_t> decipherBlocks(const Aes& aes, std::span<const std::uint8_t> bytes);
std::vector<std::uint8_t> encipherBlocks(const Aes& aes, std::span<const std::uint8_t> bytes);

}  // namespace zellab::gl
