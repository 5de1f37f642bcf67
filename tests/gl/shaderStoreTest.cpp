#include "gl/shaderStore.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "bokeh/shaderKeys.h"
#include "gl/shaderCache.h"
#include "shaderFile.h"
#include "support/randomImage.h"
#include "support/scratchFolder.h"
#include "support/streamCapture.h"

namespace {

using zellab::Bokeh::decipherShader;
using zellab::Bokeh::ShaderCache;
using zellab::Bokeh::ShaderStore;
using zeltest::Bytes;

/// A file from its words, with bytes behind them.
Bytes fileOf(std::initializer_list<std::uint32_t> words, std::size_t tail = 0) {
    Bytes bytes;
    for (std::uint32_t word : words)
        for (int shift = 0; shift < 32; shift += 8)
            bytes.push_back(static_cast<unsigned char>(word >> shift));
    for (std::size_t i = 0; i < tail; ++i) bytes.push_back(static_cast<unsigned char>(i));
    return bytes;
}

Bytes bytesOf(const ShaderStore& store, std::uint32_t key) {
    std::shared_ptr<const std::uint8_t> bytes;
    std::size_t size = 0;
    return store.get(key, bytes, size) ? Bytes(bytes.get(), bytes.get() + size) : Bytes();
}

TEST(ShaderStore, KeepsTheEntriesBeforeADamage) {
    const struct {
        const char* what;
        Bytes file;
        bool whole;
        std::size_t kept;
    } cases[] = {
        {"empty", {}, false, 0},
        {"half a count", {1, 0}, false, 0},
        {"count 0", fileOf({0}), true, 0},
        {"count -1", fileOf({0xFFFFFFFFu}), true, 0},
        {"lowest count", fileOf({0x80000000u}, 40), true, 0},
        {"highest count", fileOf({0x7FFFFFFFu, 7, 16, 4}, 4), false, 1},
        {"to the last byte", fileOf({1, 7, 16, 5}, 5), true, 1},
        {"one past the end", fileOf({1, 7, 16, 6}, 5), false, 0},
        {"second past the end", fileOf({2, 7, 28, 3, 8, 30, 4}, 5), false, 1},
        {"offset past the end", fileOf({1, 7, 22, 0}, 5), false, 0},
        {"sum wraps around", fileOf({1, 7, 0xFFFFFFFFu, 2}, 5), false, 0},
        {"both at the edge", fileOf({1, 7, 0xFFFFFFFFu, 0xFFFFFFFFu}, 5), false, 0},
        {"negative size", fileOf({1, 7, 16, 0x80000000u}, 5), false, 0},
        {"overlapping", fileOf({2, 7, 0, 28, 8, 4, 24}), true, 2},
        {"key twice", fileOf({2, 7, 28, 1, 7, 29, 2}, 5), true, 1},
    };
    for (const auto& c : cases) {
        ShaderStore store;
        EXPECT_EQ(store.parse(c.file), c.whole) << c.what;
        EXPECT_EQ(store.size(), c.kept) << c.what;
        bytesOf(store, 7);
    }
    ShaderStore store;
    store.parse(fileOf({2, 7, 28, 1, 7, 29, 2}, 5));
    EXPECT_EQ(bytesOf(store, 7), (Bytes{1, 2})) << "the later entry replaces the earlier";
}

/// The texts of a packed file come back, whatever their length; cut short anywhere, what is left stays good.
TEST(ShaderStore, ReadsWhatTheToolPacksAndSurvivesEveryTruncation) {
    std::vector<shaderpack::Shader> shaders;
    for (std::uint32_t i = 1; i <= 40; ++i)
        shaders.push_back({i * 0x9E3779B9u, std::string(i, char('a' + i % 26))});
    const Bytes file = shaderpack::packShaders(shaders);
    for (std::size_t length = 0; length <= file.size(); ++length) {
        ShaderStore store;
        ASSERT_EQ(store.parse({file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)}),
                  length == file.size());
        for (std::size_t i = 0; i < store.size(); ++i) {
            const Bytes enciphered = bytesOf(store, shaders[i].key);
            ASSERT_EQ(decipherShader(enciphered), shaders[i].text) << length;
            ASSERT_EQ(enciphered.size(), (shaders[i].text.size() + 16) / 16 * 16);
        }
    }
}

TEST(ShaderStore, LeavesAFileThatDoesNotOpenAlone) {
    const zeltest::ScratchFolder scratch;
    ShaderCache cache;
    scratch.write("shader.3.bin", fileOf({1, 7, 16, 5}, 5));
    const std::string folder = scratch.path("");
    ASSERT_TRUE(cache.load(folder.substr(0, folder.size() - 1)));
    const zeltest::StreamCapture log(stderr);
    EXPECT_FALSE(cache.load("/nonexistent"));
    EXPECT_TRUE(cache.store().contains(7));
    scratch.write("empty", {});
    ShaderStore store;
    EXPECT_FALSE(store.load(folder)) << "a folder";
    EXPECT_FALSE(store.load(scratch.path("empty")));
}

TEST(ShaderPack, NamesTheTextThatIsMissing) {
    const zeltest::ScratchFolder scratch;
    try {
        shaderpack::readPassShaders(scratch.path(""));
        ADD_FAILURE() << "a folder without texts was packed";
    } catch (const std::runtime_error& fault) {
        EXPECT_NE(std::string(fault.what()).find(zellab::Bokeh::kPassShaders[0].file), std::string::npos);
    }
}

/// The built file is the packed form of the texts that stand in the source tree.
TEST(ShaderPack, TheBuiltFileHoldsEveryListedShader) {
    ShaderCache cache;
    ASSERT_TRUE(cache.load(ZEL_ASSETS "/bokeh"));
    const auto shaders = shaderpack::readPassShaders(ZEL_SHADER_SOURCES);
    EXPECT_EQ(cache.store().size(), shaders.size());
    for (const auto& shader : shaders)
        EXPECT_EQ(decipherShader(bytesOf(cache.store(), shader.key)), shader.text) << shader.key;
}

}  // namespace
