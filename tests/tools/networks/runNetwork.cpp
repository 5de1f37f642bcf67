// Runs a network through the inference module, for the tests of the conversion:
//   runNetwork NETWORK.onnx CHANNELS HEIGHT WIDTH OUTPUT... <INPUT >OUTPUTS
// Input and outputs are bare floats; the outputs stand one behind another.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "inference/moduleLoader.h"
#include "inference/networkModule.h"

namespace {

constexpr int kThreads = 1;

int fail(const std::string& why) {
    std::fprintf(stderr, "runNetwork: %s\n", why.c_str());
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 6) return fail("NETWORK CHANNELS HEIGHT WIDTH OUTPUT... are needed");
    std::string absence;
    const ZelNetworkModule* module = zellab::platform::networkModule(absence);
    if (!module) return fail(absence);

    std::ifstream stream(argv[1], std::ios::binary);
    const std::vector<char> file((std::istreambuf_iterator<char>(stream)), {});
    char reason[200] = "";
    ZelNetwork* network = module->openNetwork(reinterpret_cast<const unsigned char*>(file.data()),
                                              file.size(), reason, sizeof reason);
    if (!network) return fail(std::string(argv[1]) + ' ' + reason);

    ZelNetworkArray input{
        nullptr, 4, {1, std::atoi(argv[2]), std::atoi(argv[3]), std::atoi(argv[4])}, nullptr};
    std::vector<float> values(std::size_t(input.dims[1]) * input.dims[2] * input.dims[3]);
    if (std::fread(values.data(), sizeof(float), values.size(), stdin) != values.size())
        return fail("the input is too short");
    input.data = values.data();

    ZelNetworkOutputs outputs{};
    if (!module->runNetwork(network, &input, argv + 5, std::size_t(argc) - 5, kThreads, &outputs, reason,
                            sizeof reason))
        return fail(reason);
    for (std::size_t i = 0; i < outputs.count; ++i) {
        std::size_t count = 1;
        for (int d = 0; d < outputs.arrays[i].dimCount; ++d) count *= std::size_t(outputs.arrays[i].dims[d]);
        std::fwrite(outputs.arrays[i].data, sizeof(float), count, stdout);
    }
    module->closeNetwork(network);
    return std::fflush(stdout) == 0 ? 0 : 1;
}
