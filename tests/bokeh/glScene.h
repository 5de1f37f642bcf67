#pragma once

#include <gtest/gtest.h>

#include "bokeh/passes.h"
#include "bokehCase.h"
#include "gl/glSupport.h"

namespace zeltest {

/// A test with a context of its own and the built shaders.
class GlScene : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        if (HasFatalFailure()) return;
        ASSERT_TRUE(cache.load(ZEL_ASSETS "/bokeh"));
    }
    void TearDown() override {
        cache.release();
        GlTest::TearDown();
    }

    zellab::Bokeh::ShaderCache cache;
};

inline zellab::Bokeh::Texture2D rgbaTexture(int width, int height, const unsigned char* pixels) {
    return {width, height, zellab::Bokeh::kOrderRgba, zellab::Bokeh::kTypeByte, pixels};
}
inline zellab::Bokeh::Texture2D planeTexture(int width, int height, const unsigned char* pixels) {
    return {width, height, zellab::Bokeh::kOrderRed, zellab::Bokeh::kTypeByte, pixels};
}

inline Bytes readRgba(const zellab::Bokeh::Texture2D& texture) {
    Bytes pixels(static_cast<std::size_t>(texture.width()) * static_cast<std::size_t>(texture.height()) * 4);
    if (!texture.read(0, 0, texture.width(), texture.height(), pixels.data())) pixels.clear();
    return pixels;
}

}  // namespace zeltest
