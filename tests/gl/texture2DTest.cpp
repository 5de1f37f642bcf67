#include "gl/texture2D.h"

#include <gmock/gmock.h>

#include "glSupport.h"
#include "support/guardedBytes.h"
#include "support/randomImage.h"
#include "support/streamCapture.h"

namespace {

using namespace zellab::Bokeh;
using zellab::gl::glCore;
using namespace zeltest;

class Texture2DTest : public GlTest {
protected:
    static GLint setOn(const Texture2D& texture, GLenum name) {
        GLint value = 0;
        glCore().bindTexture(GL_TEXTURE_2D, texture.record()->texture);
        glCore().getTexParameteriv(GL_TEXTURE_2D, name, &value);
        glCore().bindTexture(GL_TEXTURE_2D, 0);
        return value;
    }
    static GLint storedFormat(const Texture2D& texture) {
        GLint value = 0;
        glCore().bindTexture(GL_TEXTURE_2D, texture.record()->texture);
        glCore().getTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &value);
        glCore().bindTexture(GL_TEXTURE_2D, 0);
        return value;
    }
};

TEST_F(Texture2DTest, FormatsAreAsTheDriverStoresThem) {
    EXPECT_EQ(storedFormat({1, 1, kOrderRed, kTypeByte, nullptr}), GL_R8);
    EXPECT_EQ(storedFormat({1, 1, kOrderRgba, kTypeByte, nullptr}), GL_RGBA8);
    EXPECT_EQ(storedFormat({1, 1, kOrderRgb, kTypeFloat, nullptr}), GL_RGB16F);
    EXPECT_EQ(storedFormat({1, 1, kOrderRed, kTypeFloat, nullptr}), GL_R16F);
    EXPECT_EQ(internalFormat(GL_RG, GL_HALF_FLOAT), GLenum{GL_RG16F});
    EXPECT_EQ(internalFormat(GL_RGB_INTEGER, GL_SHORT), GLenum{GL_RGB16I});
    EXPECT_EQ(internalFormat(GL_RED, GL_UNSIGNED_SHORT), 0u);
    EXPECT_EQ(internalFormat(GL_RGBA_INTEGER, GL_FLOAT), 0u);
    EXPECT_EQ(internalFormat(GL_ALPHA, GL_INT), GLenum{GL_ALPHA});
    EXPECT_EQ(internalFormat(0, GL_FLOAT), 0u);
}

/// Rows of any number of bytes, and nothing beside the buffer.
TEST_F(Texture2DTest, BytesComeBackAsTheyWent) {
    for (int order : {kOrderRed, kOrderRgb, kOrderRgba})
        for (int width : {1, 5, 64, 257}) {
            const std::size_t channels = order == kOrderRed ? 1 : order == kOrderRgb ? 3 : 4;
            const Bytes pixels = randomBytes(channels * static_cast<std::size_t>(width) * 3, 7);
            const Texture2D texture(width, 3, order, kTypeByte, pixels.data());
            GuardedBytes seen(pixels.size());
            ASSERT_TRUE(texture.read(0, 0, width, 3, seen.data()));
            ASSERT_EQ(Bytes(seen.data(), seen.data() + seen.size()), pixels) << order << ' ' << width;
            ASSERT_TRUE(seen.guardsIntact());
        }
    EXPECT_EQ(integer(GL_UNPACK_ROW_LENGTH), 0);
}

TEST_F(Texture2DTest, RectanglesAndLongRowsLandWhereTheyShould) {
    const Bytes wide = randomPlane(9, 4, 3);
    const Texture2D texture(5, 4, 9, kOrderRed, kTypeByte, wide.data());
    const Bytes patch = {1, 2, 3, 4, 5, 6};
    ASSERT_TRUE(texture.write(1, 2, 3, 2, patch.data()));
    Bytes seen(20), part(6);
    ASSERT_TRUE(texture.read(0, 0, 5, 4, seen.data()));
    ASSERT_TRUE(texture.read(1, 2, 3, 2, part.data()));
    EXPECT_EQ(part, patch);
    for (std::size_t y = 0; y < 4; ++y)
        for (std::size_t x = 0; x < 5; ++x)
            EXPECT_EQ(seen[y * 5 + x],
                      y >= 2 && x >= 1 && x < 4 ? patch[(y - 2) * 3 + x - 1] : wide[y * 9 + x]);
}

TEST_F(Texture2DTest, ClonesWishForThemselvesAndShareWhatIsSet) {
    Texture2D plain(2, 2, kOrderRgba, kTypeByte, nullptr);
    Texture2D smooth = plain.clone(GL_LINEAR, GL_LINEAR);
    EXPECT_EQ(smooth.record(), plain.record());
    EXPECT_EQ(setOn(plain, GL_TEXTURE_MIN_FILTER), GL_NEAREST) << "wishes wait for the bind";
    EXPECT_EQ(smooth.bind(), plain.record()->texture);
    EXPECT_EQ(setOn(plain, GL_TEXTURE_MIN_FILTER), GL_LINEAR);
    EXPECT_EQ(*plain.record()->parameters.find(GL_TEXTURE_MAG_FILTER), GL_LINEAR);
    plain.bind();
    EXPECT_EQ(setOn(plain, GL_TEXTURE_MIN_FILTER), GL_LINEAR) << "no wish of its own";
    plain.setMinFilter(GL_NEAREST).setWrapT(GL_MIRRORED_REPEAT).bind();
    EXPECT_EQ(setOn(plain, GL_TEXTURE_MIN_FILTER), GL_NEAREST);
    EXPECT_EQ(setOn(plain, GL_TEXTURE_MAG_FILTER), GL_LINEAR);
    EXPECT_EQ(setOn(plain, GL_TEXTURE_WRAP_T), GL_MIRRORED_REPEAT);
    EXPECT_EQ(smooth.wishes().find(GL_TEXTURE_WRAP_T), nullptr);
    EXPECT_EQ(integer(GL_TEXTURE_BINDING_2D), 0);
}

TEST_F(Texture2DTest, WhatCannotBeMadeIsEmptyAndSaysSo) {
    StreamCapture log(stderr);
    unsigned char pixel[4] = {1, 2, 3, 4};
    Texture2D none;
    EXPECT_TRUE(none.isEmpty());
    EXPECT_EQ(none.width() + none.height(), 0);
    EXPECT_FALSE(none.read(0, 0, 1, 1, pixel) || none.write(0, 0, 1, 1, pixel) || none.drawInto([] {}));
    EXPECT_EQ(none.setMinFilter(GL_LINEAR).bind(), 0u);
    EXPECT_EQ(log.text(), "");
    const Texture2D odd(4, 4, 4, 3, pixel);
    EXPECT_TRUE(odd.isEmpty());
    EXPECT_FALSE(odd.read(0, 0, 1, 1, pixel) || odd.drawInto([] {}));
    EXPECT_EQ(log.text(),
              "[ERROR  ] Unknown channel type\n[ERROR  ] Unknown channel order\n"
              "[ERROR  ] Internal Format Not Support [0000,0000]\n"
              "[ERROR  ] fail to read Texture2D: mem is empty\n[ERROR  ] not allow draw: fbo is empty\n");
}

}  // namespace
