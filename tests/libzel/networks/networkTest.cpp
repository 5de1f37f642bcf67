#include "libzel/networks/network.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <openssl/sha.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <thread>

#include "libzel/networks/knownNetworks.h"
#include "libzel/networks/networkFile.h"
#include "libzel/networks/networkFolder.h"
#include "libzel/networks/sha256.h"
#include "support/environment.h"
#include "support/scratchFolder.h"
#include "support/tinyOnnx.h"

namespace {

using testing::HasSubstr;
using zel::Network;
using zel::NetworkKind;

constexpr zel::NetworkOutput kOutputs[] = {{"depth", 80}, {"confidence", 80}};
const NetworkKind kTiny{"tiny.onnx", {1, 3, 8, 10}, kOutputs};

TEST(Networks, RunByNameOnAnyNumberOfThreads) {
    const zeltest::ScratchFolder folder;
    folder.write("tiny.onnx", zeltest::tinyOnnx());
    std::string reason;
    const auto network = Network::load(folder.path().string(), kTiny, reason);
    ASSERT_TRUE(network) << reason;
    EXPECT_EQ(network, Network::load(folder.path().string(), kTiny, reason)) << "loaded once";
    std::vector<int> wrong(12, 0);
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < wrong.size(); ++t)
        threads.emplace_back([&, t] {
            std::vector<float> input(240, static_cast<float>(t));
            std::fill(input.begin() + 80, input.begin() + 160, 0.5f);
            for (int i = 0; i < 20; ++i) {
                const auto outputs = network->run(input);
                wrong[t] += outputs[0][79] != static_cast<float>(t) || outputs[1][0] != 0.5f;
            }
        });
    for (auto& thread : threads) thread.join();
    EXPECT_THAT(wrong, testing::Each(0));
    EXPECT_THROW(network->run(std::vector<float>(239)), zel::NetworkFailure);
}

/// The first place of a text changed into another of its length.
zeltest::Bytes replaced(zeltest::Bytes file, const std::string& from, const std::string& to) {
    const auto at = std::search(file.begin(), file.end(), from.begin(), from.end());
    EXPECT_NE(at, file.end());
    std::copy(to.begin(), to.end(), at);
    return file;
}

TEST(Networks, SayWhatIsWrongWithAFileAndTakeABetterOne) {
    const zeltest::ScratchFolder folder;
    const auto reasonFor = [&](const zeltest::Bytes& file) {
        folder.write("tiny.onnx", file);
        std::string reason;
        EXPECT_FALSE(Network::load(folder.path().string(), kTiny, reason));
        EXPECT_THAT(reason, HasSubstr("tiny.onnx: "));
        return reason;
    };
    constexpr zel::NetworkOutput kLarger[] = {{"depth", 90}};
    std::string sizeReason;
    folder.write("size.onnx", zeltest::tinyOnnx());
    EXPECT_FALSE(Network::load(folder.path().string(), {"size.onnx", {1, 3, 8, 10}, kLarger}, sizeReason));
    EXPECT_THAT(sizeReason, HasSubstr("has 80 numbers, not 90"));
    zeltest::TinyModel other;
    other.outputs[1].name = "deep";
    reasonFor(zeltest::tinyOnnx(other));
    reasonFor({});
    reasonFor(zeltest::randomBytes(3000, 1));
    const zeltest::Bytes whole = zeltest::tinyOnnx();
    // What takes down the library below: a weight that nothing gives, one shorter than it says, a kernel of no size.
    using namespace std::string_literals;
    reasonFor(replaced(whole, "depth_weight", "depth_height"));
    reasonFor(replaced(whole, "\x08\x01\x08\x03\x08\x01"s, "\x08\x01\x08\x7f\x08\x01"s));
    reasonFor(replaced(whole, "kernel_shape@\x01"s, "kernel_shape@\0"s));
    for (std::size_t size = 1; size < whole.size(); size += whole.size() / 12)
        reasonFor({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)});

    std::filesystem::remove(folder.path("tiny.onnx"));
    std::string reason;
    EXPECT_FALSE(Network::load(folder.path().string(), kTiny, reason));
    EXPECT_THAT(reason, HasSubstr("no such file"));
    std::filesystem::create_directory(folder.path("tiny.onnx"));
    EXPECT_FALSE(Network::load(folder.path().string(), kTiny, reason));
    std::filesystem::remove(folder.path("tiny.onnx"));

    folder.write("tiny.onnx", whole);
    EXPECT_TRUE(Network::load(folder.path().string(), kTiny, reason)) << reason;
}

TEST(Networks, AreHeldToTheirSumsWhateverLiesUnderTheirNames) {
    const zeltest::ScratchFolder folder;
    const NetworkKind kind{"faceMesh.onnx", kTiny.input, kTiny.outputs};
    const auto refusal = [&] {
        std::string reason;
        EXPECT_FALSE(Network::load(folder.path().string(), kind, reason));
        EXPECT_THAT(reason, testing::StartsWith(folder / "faceMesh.onnx: "));
        return reason;
    };
    folder.write(kind.file, zeltest::tinyOnnx());  // it would run
    EXPECT_THAT(refusal(), HasSubstr("is damaged, or another network"));
    EXPECT_THAT(zel::networkProblem(folder / kind.file, zel::sumOf(kind.file)), HasSubstr("is damaged"));
    folder.write(kind.file, {});
    EXPECT_THAT(refusal(), HasSubstr("is damaged"));
    chmod((folder / kind.file).c_str(), 0);
    if (geteuid() == 0) {  // who may read everything
        chmod(folder.path().c_str(), 0755);
        ASSERT_EQ(seteuid(65534), 0);
        EXPECT_THAT(refusal(), HasSubstr("cannot be read"));
        ASSERT_EQ(seteuid(0), 0);
    } else {
        EXPECT_THAT(refusal(), HasSubstr("cannot be read"));
    }
    std::filesystem::remove(folder / kind.file);
    std::filesystem::create_directory(folder / kind.file);
    EXPECT_THAT(refusal(), HasSubstr("cannot be read"));

    // One that is right is read once, and again when it has changed.
    const zeltest::Bytes bytes = zeltest::randomBytes(900, 1);
    const std::string path = folder.write("own.onnx", bytes), sum = zel::sha256(bytes);
    EXPECT_EQ(zel::networkProblem(path, sum), "");
    EXPECT_THAT(zel::networkProblem(path, zel::sha256({})), HasSubstr("is damaged"));
    folder.write("own.onnx", zeltest::randomBytes(901, 2));
    EXPECT_THAT(zel::networkProblem(path, sum), HasSubstr("is damaged"));
}

TEST(Networks, SumsAreThoseOfOpenSslAtEveryLengthAroundABlock) {
    for (unsigned size = 0; size < 200; ++size) {
        const zeltest::Bytes bytes = zeltest::randomBytes(size, size);
        unsigned char sum[SHA256_DIGEST_LENGTH];
        SHA256(bytes.data(), bytes.size(), sum);
        std::string text;
        for (const unsigned char byte : sum)
            for (const int digit : {byte >> 4, byte & 15}) text += "0123456789abcdef"[digit];
        ASSERT_EQ(zel::sha256(bytes), text) << size;
    }
}

TEST(Networks, LieInTheFirstFolderThatIsThere) {
    const zeltest::ScratchFolder folder;
    const zeltest::Environment none("ZEL_NETWORKS", nullptr);
    const zeltest::Environment user("XDG_DATA_HOME", (folder / "data").c_str());
    EXPECT_EQ(zel::networkFolder(folder / "assets"), "");
    EXPECT_THAT(zel::networkFolderHint(""), HasSubstr("scripts/networks"));
    std::filesystem::create_directories(folder / "data/zel_effects/networks");
    EXPECT_EQ(zel::networkFolder(folder / "assets"), folder / "data/zel_effects/networks");
    EXPECT_EQ(zel::networkFolder(""), folder / "data/zel_effects/networks");
    std::filesystem::create_directories(folder / "assets/networks");
    EXPECT_EQ(zel::networkFolder(folder / "assets"), folder / "assets/networks");
    const zeltest::Environment told("ZEL_NETWORKS", "/nowhere");
    EXPECT_EQ(zel::networkFolder(folder / "assets"), "/nowhere");
    const zeltest::Environment off("ZEL_NETWORKS", "");
    EXPECT_EQ(zel::networkFolder(folder / "assets"), "");
}

}  // namespace
