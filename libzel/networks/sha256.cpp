#include "libzel/networks/sha256.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

namespace zel {

namespace {

using Word = std::uint32_t;

constexpr std::size_t kBlock = 64;   // bytes
constexpr std::size_t kRounds = 64;  // for each block
constexpr std::size_t kState = 8;    // words

constexpr std::array<Word, kRounds> firstPrimes() {
    std::array<Word, kRounds> primes{};
    std::size_t count = 0;
    for (Word candidate = 2; count < kRounds; ++candidate)
        if (std::none_of(primes.begin(), primes.begin() + count,
                         [&](Word prime) { return candidate % prime == 0; }))
            primes[count++] = candidate;
    return primes;
}

/// A number of 128 bits, the highest word first, so that arrays compare as numbers.
using Wide = std::array<Word, 4>;

/// The lowest 128 bits of a product.
Wide product(const Wide& a, const Wide& b) {
    Wide sum{};
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::uint64_t carry = 0;
        for (std::size_t j = 0; i + j < sum.size(); ++j) {
            Word& word = sum[sum.size() - 1 - i - j];
            carry += std::uint64_t{a[a.size() - 1 - i]} * b[b.size() - 1 - j] + word;
            word = static_cast<Word>(carry);
            carry >>= 32;
        }
    }
    return sum;
}

/// The first 32 bits behind the point of a prime's square root (power 2) or cube root (power 3).
Word rootBits(Word prime, int power) {
    Wide whole{};
    whole[whole.size() - 1 - static_cast<std::size_t>(power)] = prime;  // prime * 2^(32 power)
    std::uint64_t root = 0;                                             // in 2^-32
    for (std::uint64_t bit = std::uint64_t{1} << 37; bit > 0; bit >>= 1) {
        const std::uint64_t tried = root | bit;
        const Wide wide{0, 0, static_cast<Word>(tried >> 32), static_cast<Word>(tried)};
        Wide raised = wide;
        for (int i = 1; i < power; ++i) raised = product(raised, wide);
        if (raised <= whole) root = tried;
    }
    return static_cast<Word>(root);
}

template <std::size_t count>
std::array<Word, count> rootsOfPrimes(int power) {
    constexpr auto kPrimes = firstPrimes();
    std::array<Word, count> roots{};
    std::transform(kPrimes.begin(), kPrimes.begin() + count, roots.begin(),
                   [&](Word prime) { return rootBits(prime, power); });
    return roots;
}

// Made while the library is loaded: it takes more steps than some compilers go through.
const auto kSquareRoots = rootsOfPrimes<kState>(2);  // where the state begins
const auto kCubeRoots = rootsOfPrimes<kRounds>(3);   // added in the rounds

Word bigEndian(const unsigned char* bytes) {
    return Word{bytes[0]} << 24 | Word{bytes[1]} << 16 | Word{bytes[2]} << 8 | Word{bytes[3]};
}

void addBlock(std::array<Word, kState>& state, const unsigned char* block) {
    std::array<Word, kRounds> words;
    for (std::size_t i = 0; i < 16; ++i) words[i] = bigEndian(block + 4 * i);
    for (std::size_t i = 16; i < kRounds; ++i) {
        const Word a = words[i - 15], b = words[i - 2];
        words[i] = words[i - 16] + (std::rotr(a, 7) ^ std::rotr(a, 18) ^ a >> 3) + words[i - 7] +
                   (std::rotr(b, 17) ^ std::rotr(b, 19) ^ b >> 10);
    }
    auto [a, b, c, d, e, f, g, h] = state;
    for (std::size_t i = 0; i < kRounds; ++i) {
        const Word first = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) +
                           ((e & f) ^ (~e & g)) + kCubeRoots[i] + words[i];
        const Word second =
            (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
        h = g;
        g = f;
        f = e;
        e = d + first;
        d = c;
        c = b;
        b = a;
        a = first + second;
    }
    const std::array<Word, kState> added{a, b, c, d, e, f, g, h};
    for (std::size_t i = 0; i < kState; ++i) state[i] += added[i];
}

}  // namespace

std::string sha256(std::span<const unsigned char> bytes) {
    std::array<Word, kState> state = kSquareRoots;
    std::size_t done = 0;
    for (; bytes.size() - done >= kBlock; done += kBlock) addBlock(state, bytes.data() + done);
    // The rest, a bit that is set, zeros, and the length in bits, which ends a block.
    constexpr std::size_t kLength = 8;
    std::array<unsigned char, 2 * kBlock> tail{};
    const std::size_t rest = bytes.size() - done, end = rest + 1 + kLength <= kBlock ? kBlock : 2 * kBlock;
    std::copy(bytes.begin() + static_cast<std::ptrdiff_t>(done), bytes.end(), tail.begin());
    tail[rest] = 0x80;
    for (std::size_t i = 0; i < kLength; ++i)
        tail[end - 1 - i] = static_cast<unsigned char>(std::uint64_t{bytes.size()} * 8 >> 8 * i);
    for (std::size_t at = 0; at < end; at += kBlock) addBlock(state, tail.data() + at);
    std::string text;
    for (const Word word : state)
        for (int shift = 28; shift >= 0; shift -= 4) text += "0123456789abcdef"[word >> shift & 15];
    return text;
}

}  // namespace zel
