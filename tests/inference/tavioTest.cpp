// The inference layer on hand-written networks: what it loads, what it turns away, what a run gives.
#include <gtest/gtest.h>

#include <cstring>

#include "depth/tavioSession.h"
#include "inference/onnxHead.h"
#include "support/scratchFolder.h"
#include "support/streamCapture.h"
#include "support/tinyOnnx.h"

namespace {

using namespace zeltest;

/// Number of a virtual operation's slot, from 1: a pointer to it holds 1 and the slot's distance in bytes.
template <typename Operation>
std::ptrdiff_t slotOf(Operation operation) {
    std::ptrdiff_t parts[2];
    static_assert(sizeof parts == sizeof operation);
    std::memcpy(parts, &operation, sizeof parts);
    return (parts[0] - 1) / static_cast<std::ptrdiff_t>(sizeof(void*)) + 1;
}

TEST(Tavio, OperationsStandInTheirSlots) {
    EXPECT_EQ(slotOf(&tavio::Net::LoadFile), 3);
    EXPECT_EQ(slotOf(&tavio::Net::GetNetInformation), 4);
    EXPECT_EQ(slotOf(&tavio::Net::GetInputShape), 5);
    EXPECT_EQ(slotOf(&tavio::Net::SetOption), 9);
    EXPECT_EQ(slotOf(&tavio::Executor::SetInput), 3);
    EXPECT_EQ(slotOf(&tavio::Executor::GetOutput), 5);
    EXPECT_EQ(slotOf(&tavio::Executor::Run), 7);
    EXPECT_EQ(slotOf(&tavio::Executor::SetRunOption), 14);
    EXPECT_TRUE(tavio::IsSupport(tavio::kDeviceHost));
    EXPECT_FALSE(tavio::IsSupport(tavio::kDeviceGpu));
}

class TavioRun : public testing::Test {
protected:
    bool load(const TinyModel& model) { return loadBytes(tinyOnnx(model)); }
    bool loadBytes(const Bytes& file) {
        return m_net->LoadFile(m_folder.write("model.onnx", file).c_str(), 0);
    }
    /// Runs on planes of one value each: blue, green, red.
    bool run(const std::vector<float>& colour, zellab::HostTensor& output0, zellab::HostTensor& output1) {
        tavio::InputShape shape;
        zellab::ExecutorOwner executor(tavio::Executor::CreateExecutor(m_net.get(), nullptr));
        if (!executor || !m_net->GetInputShape(0, shape)) return false;
        const auto plane = static_cast<std::size_t>(shape.h * shape.w);
        m_data.clear();
        for (const float value : colour) m_data.insert(m_data.end(), plane, value);
        m_data.front() += 0.25f;  // one sample of the first plane stands out
        zellab::HostTensor input;
        for (const int size : {shape.n, shape.c, shape.h, shape.w}) input.AddDim(static_cast<unsigned>(size));
        input.ReferenceFromData(m_data.data());
        return executor->SetInput(0, input) && executor->GetOutput(0, output0) &&
               executor->GetOutput(1, output1) && executor->Run();
    }
    static float valueOf(const tavio::Tensor& tensor, std::size_t i) {
        return static_cast<const float*>(tensor.Data())[i];
    }

    ScratchFolder m_folder;
    zellab::NetOwner m_net{tavio::Net::CreateNet(nullptr)};
    std::vector<float> m_data;
};

// The importer keeps layers by name and may hand outputs over in the order of the nodes.
TEST_F(TavioRun, OutputsComeInTheGraphsOrder) {
    for (const bool backwards : {false, true})
        for (const bool weightsAsInputs : {false, true}) {
            TinyModel model;
            model.nodesBackwards = backwards;
            model.weightsAsInputs = weightsAsInputs;
            ASSERT_TRUE(load(model));
            zellab::HostTensor output0, output1;
            ASSERT_TRUE(run({0.5f, 0.75f, 0.125f}, output0, output1));
            EXPECT_EQ(output0.GetBytes(), 8u * 10u * sizeof(float));
            EXPECT_EQ(output0.GetDim(2), 8u);
            EXPECT_EQ(output0.GetDim(3), 10u);
            EXPECT_FLOAT_EQ(valueOf(output0, 79), 0.75f);
            EXPECT_FLOAT_EQ(valueOf(output1, 79), 0.5f);
            EXPECT_FLOAT_EQ(valueOf(output1, 0), 0.75f);
        }
}

TEST_F(TavioRun, OneMapIsDepthAndItsSmoothnessTheConfidence) {
    TinyModel model;
    model.outputs = {{"depth", {1, 0, 0}}};
    ASSERT_TRUE(load(model));
    zellab::HostTensor confidence, depth;
    ASSERT_TRUE(run({0.5f, 0, 0}, confidence, depth));
    EXPECT_FLOAT_EQ(valueOf(depth, 0), 0.75f);
    EXPECT_FLOAT_EQ(valueOf(confidence, 0), 0.0f);           // at the jump
    EXPECT_FLOAT_EQ(valueOf(confidence, 3 * 10 + 3), 0.0f);  // three samples off, still in its window
    EXPECT_FLOAT_EQ(valueOf(confidence, 4 * 10 + 0), 1.0f);  // beyond
}

TEST_F(TavioRun, UnsuitedModelsAreTurnedAwayAndTheFormerOneStays) {
    ASSERT_TRUE(load({}));
    const auto shaped = [](std::vector<std::int64_t> dims) {
        TinyModel model;
        model.input = std::move(dims);
        return tinyOnnx(model);
    };
    TinyModel three, unknown;
    three.outputs.push_back({"more", {1, 1, 1}});
    unknown.operation = "NoSuchLayer";
    const Bytes cases[] = {{},
                           randomBytes(4000, 7),
                           shaped({1, 1, 8, 10}),
                           shaped({2, 3, 8, 10}),
                           shaped({1, 3, -1, 10}),
                           shaped({1, 3, 8, 0}),
                           shaped({3, 8, 10}),
                           shaped({1, 3, 1 << 20, 1 << 20}),
                           tinyOnnx(three),
                           tinyOnnx(unknown)};
    StreamCapture err(stderr);
    for (const Bytes& file : cases) EXPECT_FALSE(loadBytes(file)) << &file - cases;
    const Bytes whole = tinyOnnx();
    // Cut within the graph: the parts behind it are not needed to run.
    for (std::size_t length = 0; length + 8 < whole.size(); ++length)
        EXPECT_FALSE(loadBytes({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)}))
            << length;
    EXPECT_FALSE(m_net->LoadFile(m_folder.path("missing.onnx").c_str(), 0));
    EXPECT_FALSE(m_net->LoadFile(nullptr, 0));
    EXPECT_EQ(err.text(), "") << "the library below speaks for itself";
    zellab::HostTensor output0, output1;
    EXPECT_TRUE(run({0.5f, 0, 0}, output0, output1));
}

TEST_F(TavioRun, AFolderStandsForTheNetworkInIt) {
    ScratchFolder other;
    EXPECT_FALSE(m_net->LoadFile(other.path("").c_str(), 0));
    other.write("portrait_depth.onnx", tinyOnnx());
    EXPECT_TRUE(m_net->LoadFile(other.path("").c_str(), 0));
}

TEST_F(TavioRun, OpenNumberOfPicturesIsOneAndOtherTypesAreToldButNotRun) {
    TinyModel model;
    model.input[0] = -1;
    zellab::HostTensor output0, output1;
    EXPECT_TRUE(load(model) && run({0.5f, 0, 0}, output0, output1));
    model.inputType = 7;
    ASSERT_TRUE(load(model));
    tavio::NetInformation information;
    EXPECT_TRUE(m_net->GetNetInformation(information));
    EXPECT_EQ(information.inputDataType, 7);
    EXPECT_FALSE(run({0.5f, 0, 0}, output0, output1));
}

TEST_F(TavioRun, ExecutorWantsAFittingInputForEveryRun) {
    EXPECT_EQ(tavio::Executor::CreateExecutor(m_net.get(), nullptr), nullptr) << "no model yet";
    ASSERT_TRUE(load({}));
    const zellab::ExecutorOwner executor(tavio::Executor::CreateExecutor(m_net.get(), nullptr));
    const std::vector<float> data(3 * 8 * 10);
    zellab::HostTensor wrong, right, output;
    for (const unsigned size : {1u, 3u, 8u, 9u}) wrong.AddDim(size);
    for (const unsigned size : {1u, 3u, 8u, 10u}) right.AddDim(size);
    wrong.ReferenceFromData(data.data());
    EXPECT_FALSE(executor->SetInput(0, wrong));
    EXPECT_FALSE(executor->SetInput(0, right)) << "no data";
    right.ReferenceFromData(data.data());
    EXPECT_FALSE(executor->SetInput(1, right));
    EXPECT_FALSE(executor->GetOutput(2, output));
    EXPECT_FALSE(executor->Run());
    EXPECT_TRUE(executor->SetInput(0, right) && executor->Run());
    EXPECT_FALSE(executor->Run());
}

}  // namespace
