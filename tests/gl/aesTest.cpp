#include "gl/aes.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <memory>
#include <string>

#include "support/randomImage.h"

namespace {

using namespace zellab::gl;
using zeltest::Bytes;

Bytes fromHex(const std::string& text) {
    Bytes bytes;
    for (std::size_t i = 0; i < text.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(std::stoi(text.substr(i, 2), nullptr, 16)));
    return bytes;
}

/// Appendices B and C of the cipher's standard.
TEST(Aes, GivesThePublishedBlocks) {
    const struct {
        AesMode mode;
        const char *key, *plain, *cipher;
    } cases[] = {
        {AesMode::aes128, "2b7e151628aed2a6abf7158809cf4f3c", "3243f6a8885a308d313198a2e0370734",
         "3925841d02dc09fbdc118597196a0b32"},
        {AesMode::aes128, "000102030405060708090a0b0c0d0e0f", "00112233445566778899aabbccddeeff",
         "69c4e0d86a7b0430d8cdb78070b4c55a"},
        {AesMode::aes192, "000102030405060708090a0b0c0d0e0f1011121314151617",
         "00112233445566778899aabbccddeeff", "dda97ca4864cdfe06eaf70a0ec0d7191"},
        {AesMode::aes256, "000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f",
         "00112233445566778899aabbccddeeff", "8ea2b7ca516745bfeafc49904b496089"},
    };
    for (const auto& c : cases) {
        const Aes aes(c.mode, fromHex(c.key));
        EXPECT_EQ(encipherBlocks(aes, fromHex(c.plain)), fromHex(c.cipher)) << c.key;
        EXPECT_EQ(decipherBlocks(aes, fromHex(c.cipher)), fromHex(c.plain)) << c.key;
    }
}

Bytes withOpenSsl(const EVP_CIPHER* cipher, const Bytes& key, Bytes bytes, bool encipher) {
    bytes.resize((bytes.size() + 15) / 16 * 16);
    Bytes out(bytes.size() + 16);
    const std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(),
                                                                                  EVP_CIPHER_CTX_free);
    int length = 0, rest = 0;
    EVP_CipherInit_ex(context.get(), cipher, nullptr, key.data(), nullptr, encipher ? 1 : 0);
    EVP_CIPHER_CTX_set_padding(context.get(), 0);
    EVP_CipherUpdate(context.get(), out.data(), &length, bytes.data(), static_cast<int>(bytes.size()));
    EVP_CipherFinal_ex(context.get(), out.data() + length, &rest);
    out.resize(static_cast<std::size_t>(length + rest));
    return out;
}

/// Every length from 1 to 1,000 bytes, where the tail is filled up with zero bytes before it is deciphered.
TEST(Aes, AgreesWithOpenSslOnEveryLength) {
    const EVP_CIPHER* ciphers[] = {EVP_aes_128_ecb(), EVP_aes_192_ecb(), EVP_aes_256_ecb()};
    for (unsigned length = 1; length <= 1000; ++length) {
        const unsigned mode = length % 3;
        const Bytes key = zeltest::randomBytes(16 + 8 * mode, length),
                    bytes = zeltest::randomBytes(length, ~length);
        const Aes aes(static_cast<AesMode>(mode), key);
        ASSERT_EQ(decipherBlocks(aes, bytes), withOpenSsl(ciphers[mode], key, bytes, false)) << length;
        ASSERT_EQ(encipherBlocks(aes, bytes), withOpenSsl(ciphers[mode], key, bytes, true)) << length;
    }
    EXPECT_TRUE(decipherBlocks(Aes(AesMode::aes128, Bytes(16)), {}).empty());
}

}  // namespace
