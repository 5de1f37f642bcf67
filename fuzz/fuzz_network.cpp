// Network files: any bytes under the name of a network that the library knows, under a name with a sum of its own,
// and as a depth network of a user's. The module that would run them is switched off: what stands before it is ours.
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "inference/tavio.h"
#include "libzel/networks/knownNetworks.h"
#include "libzel/networks/network.h"
#include "libzel/networks/networkFile.h"
#include "libzel/networks/sha256.h"

namespace {

constexpr zel::NetworkOutput kOutputs[] = {{"out", 1}};

std::string freshFolder() {
    setenv("ZEL_NETWORKS_MODULE", "", 1);
    const auto folder = std::filesystem::temp_directory_path() / ("fuzz_network." + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    return folder.string();
}

void expect(bool holds) {
    if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    static const struct Folder {
        const std::string path = freshFolder();
        ~Folder() { std::filesystem::remove_all(path); }
    } folder;
    const zel::NetworkKind kind{zel::knownNetworks().front().file, {1, 3, 4, 4}, kOutputs};
    const std::string path = folder.path + "/" + kind.file;
    std::ofstream(path, std::ios::binary)
        .write(reinterpret_cast<const char*>(input), static_cast<std::streamsize>(size));

    std::string reason;
    expect(!zel::Network::load(folder.path, kind, reason));
    expect(reason.starts_with(path) && reason.find('\n') == std::string::npos);
    const auto bytes = zel::readNetwork(path, zel::sha256({input, size}), reason);
    expect(bytes && reason.empty() && std::equal(bytes->begin(), bytes->end(), input, input + size));

    tavio::Net* const net = tavio::Net::CreateNet(nullptr);
    tavio::NetInformation information;
    if (net->LoadFile(path.c_str(), 0))  // without the module only one of other numbers than floats
        expect(net->GetNetInformation(information) && information.inputDataType != tavio::kDataFloat32);
    tavio::Net::ReleaseNet(net);
    return 0;
}
