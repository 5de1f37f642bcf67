#include "gl/aes.h"

#include <gtest/gtest.h>
#include <openssl/evp.h>

#include <memory>

#include "support/randomImage.h"

namespace {

using namespace zellab::gl;
using zeltest::Bytes;

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
