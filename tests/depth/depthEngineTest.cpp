// The engine on hand-written networks: lines, their order, and what reaches the caller's buffers.
#include "depth/depthEngine.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "depth/networkPixels.h"
#include "depth/portraitDepth.h"
#include "platform/module.h"
#include "support/environment.h"
#include "support/scratchFolder.h"
#include "support/streamCapture.h"
#include "support/tinyOnnx.h"

namespace {

using namespace zeltest;
using testing::ElementsAre;

std::string lines(std::initializer_list<std::string> texts) {
    std::string all;
    for (const std::string& text : texts) all += "[DEBUG  ] " + text + "\n";
    return all;
}

struct EngineDeleter {
    void operator()(zellab::DepthEngine* engine) const { zellab::ReleaseDepthEngine(engine); }
};

class DepthEngineTest : public testing::Test {
protected:
    using Engine = std::unique_ptr<zellab::DepthEngine, EngineDeleter>;

    static Engine make(unsigned backend) {
        zellab::DepthEngine* engine = nullptr;
        EXPECT_TRUE(zellab::CreateDepthEngine(&engine, backend, nullptr));
        return Engine(engine);
    }
    std::string model(const TinyModel& tiny = {}) const { return m_folder.write("m.onnx", tinyOnnx(tiny)); }

    ScratchFolder m_folder;
    Bytes m_image = randomRgba(10, 8, 3);
    Bytes m_depth = Bytes(80, 7), m_second = m_depth;
};

TEST_F(DepthEngineTest, TellsWhatItDoesAndGivesBlueAsDepth) {
    StreamCapture err(stderr);
    const Engine engine = make(1);
    const std::string path = model();
    ASSERT_TRUE(engine->LoadModel(path.c_str()));
    m_image[2] = 0;  // blue's limits, so that the byte comes back as it is
    m_image[6] = 255;
    ASSERT_TRUE(engine->Run({m_image.data(), 10, 8}, m_depth.data(), m_second.data()));
    EXPECT_EQ(err.text(),
              lines({"This is version 1.1.0.0", "LoadModel +", "Load model: " + path, "LoadModel -",
                     "run_tavio +", "Input data type: 1, Input shape: 1 x 3 x 8 x 10",
                     "output shape:1 x 1 x 8 x 10", "run_tavio -"}));
    for (std::size_t i = 0; i < 80; ++i) ASSERT_NEAR(m_depth[i], m_image[4 * i + 2], 1) << i;
    EXPECT_EQ(*std::max_element(m_second.begin(), m_second.end()), 255);
}

TEST_F(DepthEngineTest, EveryFailureHasItsLineAndLeavesTheBuffers) {
    const Bytes before = m_depth;
    const auto fails = [&](const Engine& engine, zellab::Byte* image, zellab::Byte* depth,
                           zellab::Byte* second, const std::string& says) {
        StreamCapture err(stderr);
        EXPECT_FALSE(engine->Run({image, 10, 8}, depth, second)) << says;
        EXPECT_THAT(err.text(), testing::HasSubstr(lines({says})));
        EXPECT_EQ(m_depth, before);
        EXPECT_EQ(m_second, before);
    };
    const Engine engine = make(1);
    fails(engine, m_image.data(), m_depth.data(), m_second.data(), "Unsupport Input Data Type, 0!");
    {
        StreamCapture err(stderr);
        EXPECT_FALSE(engine->LoadModel("/no/such/model"));
        EXPECT_EQ(err.text(), lines({"LoadModel +", "Net Load File Failed: /no/such/model"}));
    }
    ASSERT_TRUE(engine->LoadModel(model().c_str()));
    fails(engine, nullptr, m_depth.data(), m_second.data(), "GetInputData Failed!");
    fails(engine, m_image.data(), nullptr, m_second.data(), "GetOutputData Failed!");
    fails(engine, m_image.data(), m_depth.data(), nullptr, "GetOutputData Failed!");
    TinyModel halves;
    halves.inputType = 10;
    ASSERT_TRUE(engine->LoadModel(model(halves).c_str()));
    fails(engine, m_image.data(), m_depth.data(), m_second.data(), "Unsupport Input Data Type, 10!");

    StreamCapture err(stderr);
    const Engine onGpu = make(2);
    EXPECT_THAT(err.text(), testing::HasSubstr(lines({"This device does not support GPU!"})));
    EXPECT_FALSE(onGpu->LoadModel(model().c_str()));
    EXPECT_FALSE(onGpu->Run({m_image.data(), 10, 8}, m_depth.data(), m_second.data()));
}

TEST_F(DepthEngineTest, WithoutTheInferenceModuleNoNetworkLoadsUntilItIsThere) {
    const Engine engine = make(1);
    const std::string path = model();
    {
        const Environment none("ZEL_NETWORKS_MODULE", "");
        StreamCapture err(stderr);
        EXPECT_FALSE(engine->LoadModel(path.c_str()));
        const std::string text = err.text(), says = "the inference module " +
                                                    zellab::platform::moduleFileName("zel_networks") +
                                                    " is switched off";
        EXPECT_THAT(text, testing::HasSubstr(" : " + says));
        EXPECT_EQ(text.find(says), text.rfind(says)) << "told once";
        EXPECT_THAT(text, testing::EndsWith(lines({"Net Load File Failed: " + path})));
    }
    EXPECT_TRUE(engine->LoadModel(path.c_str()));
}

TEST_F(DepthEngineTest, OtherSizesMeetTheNetworksByTheNearestSampleAndThePlanesByScaling) {
    const Engine engine = make(1);
    ASSERT_TRUE(engine->LoadModel(model().c_str()));
    Bytes large(20 * 16 * 4);  // every pixel of m_image four times
    for (std::size_t i = 0; i < large.size(); ++i)
        large[i] = m_image[(i / 4 / 20 / 2 * 10 + i / 4 % 20 / 2) * 4 + i % 4];
    Bytes depth(80), second(80);
    ASSERT_TRUE(engine->Run({m_image.data(), 10, 8}, m_depth.data(), m_second.data()));
    ASSERT_TRUE(engine->Run({large.data(), 20, 16}, depth.data(), second.data()));
    EXPECT_EQ(depth, m_depth);
    Bytes wide(31 * 17), wideSecond(31 * 17);  // would be overrun or half filled by maps as they come
    ASSERT_TRUE(
        engine->runToPlanes({m_image.data(), 10, 8}, {wide.data(), 31, 17}, {wideSecond.data(), 31, 17}));
    EXPECT_EQ(wide.front(), m_depth.front());
    EXPECT_EQ(wide.back(), m_depth.back());
}

// 0 / 0, infinity and NaN out of a network have no byte of their own.
TEST_F(DepthEngineTest, MapsWithoutANumberBecomeBytesAllTheSame) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const Engine engine = make(1);
    for (const float weight : {0.0f, kInfinity, -kInfinity, std::nanf(""), 3e38f}) {
        TinyModel tiny;
        tiny.outputs[1].weights = {weight, 0, weight};
        ASSERT_TRUE(engine->LoadModel(model(tiny).c_str()));
        EXPECT_TRUE(engine->Run({m_image.data(), 10, 8}, m_depth.data(), m_second.data()));
        if (weight == 0.0f) {
            EXPECT_EQ(m_depth, Bytes(80, 0));
        }
    }
}

TEST(NetworkPixels, BytesAreStretchedFromTheSeededLimits) {
    const auto bytes = [](const std::vector<float>& map) {
        Bytes out(map.size());
        EXPECT_TRUE(zellab::mapToBytes(map.data(), map.size(), out.data()));
        return out;
    };
    EXPECT_THAT(bytes({2, 3, 4, 6}), ElementsAre(0, 63, 127, 255));
    EXPECT_THAT(bytes({15, 20, 12}), ElementsAre(127, 255, 51));  // the minimum stays 10
    EXPECT_THAT(bytes({-5, -3, -2}), ElementsAre(0, 127, 191));   // the maximum stays -1
    EXPECT_FALSE(zellab::mapToBytes(nullptr, 0, nullptr));

    const Bytes pixels{255, 51, 0, 9, 102, 0, 255, 9};
    std::vector<float> planes(6), groups(6), back(6);
    zellab::pixelsToPlanes({pixels.data(), 2, 1}, planes.data());
    EXPECT_THAT(planes, ElementsAre(0, 1, 0.2f, 0, 1, 0.4f));
    zellab::pixelsToGroups({pixels.data(), 2, 1}, groups.data(), 3);
    zellab::groupsToPlanes(groups.data(), 3, 2, back.data());
    EXPECT_EQ(back, planes);
}

/// A back end that writes down what it is asked.
struct Diary : std::vector<std::string> {};
struct DiaryNet : tavio::Net {
    explicit DiaryNet(Diary& d) : diary(d) {}
    bool LoadFile(const char*, int) override { return true; }
    bool GetNetInformation(tavio::NetInformation& i) const override { return (i.inputDataType = 1) == 1; }
    bool GetInputShape(int, tavio::InputShape& s) const override {
        s.n = 1, s.c = 3, s.h = 8, s.w = 10;
        return true;
    }
    void SetOption(tavio::ExtendOptionID, std::intptr_t) override {}
    Diary& diary;
};
struct DiaryExecutor : tavio::Executor {
    explicit DiaryExecutor(Diary& d) : diary(d) {}
    bool SetInput(int, const tavio::Tensor&) override { return diary.emplace_back("input"), false; }
    bool GetOutput(int i, tavio::Tensor& t) override {
        t.Adopt({1, 1, 2, 2}, {0, 1, 2, 4});
        return diary.emplace_back("output " + std::to_string(i)), i == 0;
    }
    bool Run() override { return diary.emplace_back("run"), runs; }
    void SetRunOption(tavio::ExtendOptionID id, int) override { diary.emplace_back(std::to_string(id)); }
    Diary& diary;
    bool runs = false;
};

TEST(DepthEstimators, CallTheBackEndInTheirOrder) {
    Bytes image = randomRgba(10, 8, 1), depth(4), second(4);
    for (const auto& [begin, end, before] :
         {std::tuple{true, true, "815"}, {true, false, "814"}, {false, false, ""}}) {
        Diary diary;
        zellab::DepthEstimatorGL gl(zellab::NetOwner(new DiaryNet(diary)),
                                    zellab::ExecutorOwner(new DiaryExecutor(diary)));
        EXPECT_TRUE(gl.run_tavio({image.data(), 10, 8}, depth.data(), second.data(), begin, end))
            << "a failed run is no matter";
        std::vector<std::string> expected{"output 0", "output 1"};
        if (*before) expected.emplace_back(before);
        expected.emplace_back("run");
        if (end) expected.emplace_back("816");
        EXPECT_EQ(static_cast<std::vector<std::string>&>(diary), expected);
        EXPECT_THAT(depth, ElementsAre(0, 63, 127, 255));
    }
    Diary diary;
    zellab::DepthEstimator cpu(zellab::NetOwner(new DiaryNet(diary)),
                               zellab::ExecutorOwner(new DiaryExecutor(diary)));
    StreamCapture err(stderr);
    EXPECT_FALSE(cpu.run_tavio({image.data(), 10, 8}, depth.data(), second.data()));
    EXPECT_THAT(diary, ElementsAre("input", "output 0", "output 1", "run"));
    EXPECT_THAT(err.text(),
                testing::HasSubstr(lines({"input doesn't initialized!", "output doesn't initialized!",
                                          "Tavio Run Failed!", "run_tavio -"})));
}

}  // namespace
