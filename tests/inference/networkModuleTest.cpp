// The inference module: which files the loader takes, and what the table's functions give and turn away.
#include "inference/networkModule.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <memory>
#include <thread>

#include "inference/moduleLoader.h"
#include "support/environment.h"
#include "support/scratchFolder.h"
#include "support/streamCapture.h"
#include "support/tinyOnnx.h"

namespace {

using namespace zeltest;
using testing::ElementsAre;
using testing::HasSubstr;
using zellab::platform::networkModule;

constexpr const char* kVariable = "ZEL_NETWORKS_MODULE";

TEST(NetworkModuleLoader, TakesNoFileButAModuleOfItsVersionAndLooksAgainEachTime) {
    const ScratchFolder folder;
    folder.write("libzel_networks.so", randomBytes(3000, 1));
    const struct {
        std::string told;
        const char* says;
    } cases[] = {{"", "switched off"},
                 {"libzel_networks.so", "absolute path"},
                 {folder.path("none.so"), "no file"},
                 {folder.path(""), "no file"},
                 {folder.path("libzel_networks.so"), "cannot be used"},
                 {std::filesystem::absolute(ZEL_OLD_MODULE).string(), "version 2, not 1"},
                 {std::filesystem::absolute(ZEL_OTHER_MODULE).string(), "another kind"}};
    for (const auto& c : cases) {
        std::string absence;
        {
            const Environment told(kVariable, c.told.c_str());
            EXPECT_EQ(networkModule(absence), nullptr) << c.told;
        }
        EXPECT_THAT(absence, testing::AllOf(HasSubstr("the inference module "), HasSubstr(c.says)));
        EXPECT_EQ(absence.find('\n'), std::string::npos);
        EXPECT_NE(networkModule(absence), nullptr) << absence;
        EXPECT_EQ(absence, "");
    }
}

class NetworkModule : public testing::Test {
protected:
    struct Closer {
        void operator()(ZelNetwork* network) const { table()->closeNetwork(network); }
    };
    using Network = std::unique_ptr<ZelNetwork, Closer>;

    static const ZelNetworkModule* table() {
        std::string absence;
        return networkModule(absence);
    }
    Network open(const Bytes& file) {
        return Network(table()->openNetwork(file.data(), file.size(), m_reason.data(), m_reason.size()));
    }
    bool run(const Network& network, const ZelNetworkArray& input, const std::vector<const char*>& names,
             int threads = 0) {
        return table()->runNetwork(network.get(), &input, names.data(), names.size(), threads, &m_outputs,
                                   m_reason.data(), m_reason.size()) != 0;
    }
    std::string reason() const { return m_reason.data(); }
    /// The first value of each output: the weighted sum of 0.5, 0.25 and 0.125.
    std::vector<float> values() const {
        std::vector<float> all;
        for (std::size_t i = 0; i < m_outputs.count; ++i) all.push_back(m_outputs.arrays[i].data[0]);
        return all;
    }

    std::array<char, 200> m_reason{};
    ZelNetworkOutputs m_outputs{};
    std::vector<float> m_planes = [] {
        std::vector<float> planes(240, 0.5f);
        std::fill(planes.begin() + 80, planes.begin() + 160, 0.25f);
        std::fill(planes.begin() + 160, planes.end(), 0.125f);
        return planes;
    }();
    const ZelNetworkArray m_input{nullptr, 4, {1, 3, 8, 10}, m_planes.data()};
};

TEST_F(NetworkModule, OutputsComeInTheOrderOfTheNamesElseInTheFiles) {
    TinyModel model;  // neither the nodes nor the alphabet have the file's order
    model.nodesBackwards = true;
    model.outputs = {{"middle", {0, 1, 0}}, {"zenith", {1, 0, 0}}, {"above", {0, 0, 1}}};
    const Network network = open(tinyOnnx(model));
    ASSERT_TRUE(network) << reason();
    ASSERT_TRUE(run(network, m_input, {})) << reason();
    EXPECT_THAT(values(), ElementsAre(0.25f, 0.5f, 0.125f));
    EXPECT_STREQ(m_outputs.arrays[2].name, "above");
    EXPECT_THAT(m_outputs.arrays[2].dims, ElementsAre(1, 1, 8, 10));
    ZelNetworkArray named = m_input;
    named.name = "input";
    StreamCapture err(stderr);
    for (const int threads : {0, 1, 300}) {
        ASSERT_TRUE(run(network, named, {"above", "middle"}, threads)) << reason();
        EXPECT_THAT(values(), ElementsAre(0.125f, 0.25f));
    }
    EXPECT_EQ(err.text(), "") << "the library below speaks for itself";
}

TEST_F(NetworkModule, FailuresAreToldAndLeaveTheNetworkUsable) {
    for (const Bytes& file : {Bytes(), randomBytes(900, 3)}) {
        EXPECT_FALSE(open(file));
        EXPECT_EQ(reason(), "is no ONNX network");
    }
    TinyModel unknown;
    unknown.operation = "NoSuchLayer";
    EXPECT_FALSE(open(tinyOnnx(unknown)));
    EXPECT_NE(reason(), "");

    const Network network = open(tinyOnnx());
    ZelNetworkArray narrow = m_input, many = m_input, empty = m_input, other = m_input;
    narrow.dims[1] = 2;  // planes for weights of three
    many.dimCount = 5;
    empty.data = nullptr;
    other.name = "no such input";
    for (const ZelNetworkArray& input : {narrow, many, empty, other}) {
        EXPECT_FALSE(run(network, input, {})) << &input;
        EXPECT_NE(reason(), "");
        EXPECT_EQ(m_outputs.count, 0u);
        EXPECT_TRUE(run(network, m_input, {})) << reason();
        EXPECT_EQ(reason(), "");
    }
    EXPECT_FALSE(run(network, m_input, {"no such output"}));
    EXPECT_FALSE(run(nullptr, m_input, {}));

    // The text is cut to the buffer that there is.
    char small[4] = "xyz";
    EXPECT_EQ(table()->openNetwork(nullptr, 7, small, sizeof small), nullptr);
    EXPECT_STREQ(small, "is ");
    EXPECT_EQ(table()->openNetwork(nullptr, 7, nullptr, 0), nullptr);
    EXPECT_EQ(table()->openCascade("/no/such/file", small, sizeof small), nullptr);
    EXPECT_STREQ(small, "is ");
    ZelCascadeBoxes found{};
    EXPECT_FALSE(table()->searchCascade(nullptr, nullptr, &found, nullptr, 0));
}

// Runs that ask for different numbers of threads wait for one another, and none for ever.
TEST_F(NetworkModule, ServesThreadsAtOnceEachWithANetworkOfItsOwn) {
    std::array<float, 6> got{};
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < got.size(); ++i)
        threads.emplace_back([&, i] {
            const Bytes file = tinyOnnx();
            const Network network(table()->openNetwork(file.data(), file.size(), nullptr, 0));
            ZelNetworkOutputs outputs{};
            for (int round = 0; round < 20; ++round) {
                const bool ran = table()->runNetwork(network.get(), &m_input, nullptr, 0,
                                                     static_cast<int>(i % 3), &outputs, nullptr, 0) != 0;
                got[i] += ran ? outputs.arrays[1].data[79] : 0;
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_THAT(got, testing::Each(20 * 0.5f));
}

}  // namespace
