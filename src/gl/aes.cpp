#include "gl/aes.h"

#include <algorithm>
#include <bit>
#include <cassert>

namespace zellab::gl {

namespace {

using Table = std::array<std::uint8_t, 256>;

/// Multiplication by x in the field of the cipher, modulo x^8 + x^4 + x^3 + x + 1.
constexpr std::uint8_t timesX(std::uint8_t a) {
    return static_cast<std::uint8_t>((a << 1) ^ ((a & 0x80) != 0 ? 0x1B : 0));
}

constexpr std::uint8_t multiply(std::uint8_t a, std::uint8_t b) {
    std::uint8_t product = 0;
    for (; b != 0; b >>= 1, a = timesX(a))
        if ((b & 1) != 0) product ^= a;
    return product;
}

/// The substitution: the inverse in the field, then an affine map. Walks the powers of the generator 3 and of
/// its inverse side by side, so that q is always the inverse of p.
constexpr Table makeSubstitution() {
    Table box{};
    std::uint8_t p = 1, q = 1;
    do {
        p = static_cast<std::uint8_t>(p ^ timesX(p));
        q = multiply(q, 0xF6);  // the inverse of 3
        std::uint8_t mixed = q;
        for (int turn = 1; turn <= 4; ++turn) mixed ^= std::rotl(q, turn);
        box[p] = mixed ^ 0x63;
    } while (p != 1);
    box[0] = 0x63;
    return box;
}

constexpr Table invert(const Table& box) {
    Table inverse{};
    for (std::size_t i = 0; i < box.size(); ++i) inverse[box[i]] = static_cast<std::uint8_t>(i);
    return inverse;
}

/// Products of one factor with every byte.
constexpr Table makeProducts(std::uint8_t factor) {
    Table products{};
    for (std::size_t i = 0; i < products.size(); ++i)
        products[i] = multiply(static_cast<std::uint8_t>(i), factor);
    return products;
}

constexpr Table kSubstitution = makeSubstitution();
constexpr Table kInverseSubstitution = invert(kSubstitution);
constexpr Table kTimes2 = makeProducts(2), kTimes3 = makeProducts(3);
constexpr Table kTimes9 = makeProducts(9), kTimes11 = makeProducts(11), kTimes13 = makeProducts(13),
                kTimes14 = makeProducts(14);

void substitute(AesBlock& block, const Table& box) {
    for (auto& byte : block) byte = box[byte];
}

/// Row r of the state, which is stored column by column, turns left by r columns (or right, to undo it).
void shiftRows(AesBlock& block, bool undo) {
    const AesBlock before = block;
    for (std::size_t column = 0; column < 4; ++column)
        for (std::size_t row = 0; row < 4; ++row) {
            const std::size_t from = (column + (undo ? 4 - row : row)) % 4;
            block[4 * column + row] = before[4 * from + row];
        }
}

void mixColumns(AesBlock& block) {
    for (std::size_t i = 0; i < kAesBlock; i += 4) {
        const std::uint8_t a = block[i], b = block[i + 1], c = block[i + 2], d = block[i + 3];
        block[i] = kTimes2[a] ^ kTimes3[b] ^ c ^ d;
        block[i + 1] = a ^ kTimes2[b] ^ kTimes3[c] ^ d;
        block[i + 2] = a ^ b ^ kTimes2[c] ^ kTimes3[d];
        block[i + 3] = kTimes3[a] ^ b ^ c ^ kTimes2[d];
    }
}

void unmixColumns(AesBlock& block) {
    for (std::size_t i = 0; i < kAesBlock; i += 4) {
        const std::uint8_t a = block[i], b = block[i + 1], c = block[i + 2], d = block[i + 3];
        block[i] = kTimes14[a] ^ kTimes11[b] ^ kTimes13[c] ^ kTimes9[d];
        block[i + 1] = kTimes9[a] ^ kTimes14[b] ^ kTimes11[c] ^ kTimes13[d];
        block[i + 2] = kTimes13[a] ^ kTimes9[b] ^ kTimes14[c] ^ kTimes11[d];
        block[i + 3] = kTimes11[a] ^ kTimes13[b] ^ kTimes9[c] ^ kTimes14[d];
    }
}

/// Whole blocks through one of the two directions, the last one filled up with zero bytes.
template <typename Step>
std::vector<std::uint8_t> eachBlock(std::span<const std::uint8_t> bytes, const Step& step) {
    std::vector<std::uint8_t> out((bytes.size() + kAesBlock - 1) / kAesBlock * kAesBlock);
    for (std::size_t i = 0; i < bytes.size(); i += kAesBlock) {
        AesBlock block{};
        const auto part = bytes.subspan(i, std::min(kAesBlock, bytes.size() - i));
        std::copy(part.begin(), part.end(), block.begin());
        step(block);
        std::copy(block.begin(), block.end(), out.begin() + static_cast<std::ptrdiff_t>(i));
    }
    return out;
}

}  // namespace

Aes::Aes(AesMode mode, std::span<const std::uint8_t> key) {
    const std::size_t keyWords = 4 + 2 * static_cast<std::size_t>(mode);
    assert(key.size() == 4 * keyWords);
    m_rounds = static_cast<int>(keyWords) + 6;
    const std::size_t words = 4 * (static_cast<std::size_t>(m_rounds) + 1);
    m_schedule.assign(key.begin(), key.end());
    m_schedule.resize(4 * words);
    std::uint8_t roundConstant = 1;
    for (std::size_t i = keyWords; i < words; ++i) {
        std::array<std::uint8_t, 4> word{};
        std::copy_n(m_schedule.begin() + static_cast<std::ptrdiff_t>(4 * (i - 1)), 4, word.begin());
        if (i % keyWords == 0) {
            std::rotate(word.begin(), word.begin() + 1, word.end());
            for (auto& byte : word) byte = kSubstitution[byte];
            word[0] ^= roundConstant;
            roundConstant = timesX(roundConstant);
        } else if (mode == AesMode::aes256 && i % keyWords == 4) {
            for (auto& byte : word) byte = kSubstitution[byte];
        }
        for (std::size_t b = 0; b < 4; ++b)
            m_schedule[4 * i + b] = m_schedule[4 * (i - keyWords) + b] ^ word[b];
    }
}

void Aes::addRoundKey(AesBlock& block, int round) const {
    const std::size_t start = kAesBlock * static_cast<std::size_t>(round);
    for (std::size_t i = 0; i < kAesBlock; ++i) block[i] ^= m_schedule[start + i];
}

void Aes::encipher(AesBlock& block) const {
    addRoundKey(block, 0);
    for (int round = 1; round <= m_rounds; ++round) {
        substitute(block, kSubstitution);
        shiftRows(block, false);
        if (round < m_rounds) mixColumns(block);
        addRoundKey(block, round);
    }
}

void Aes::decipher(AesBlock& block) const {
    for (int round = m_rounds; round >= 1; --round) {
        addRoundKey(block, round);
        if (round < m_rounds) unmixColumns(block);
        shiftRows(block, true);
        substitute(block, kInverseSubstitution);
    }
    addRoundKey(block, 0);
}

std::vector<std::uint8_t> decipherBlocks(const Aes& aes, std::span<const std::uint8_t> bytes) {
    return eachBlock(bytes, [&aes](AesBlock& block) { aes.decipher(block); });
}

std::vector<std::uint8_t> encipherBlocks(const Aes& aes, std::span<const std::uint8_t> bytes) {
    return eachBlock(bytes, [&aes](AesBlock& block) { aes.encipher(block); });
}

}  // namespace zellab::gl
