#include "libzel/networks/knownNetworks.h"

#include <algorithm>
#include <array>

namespace zel {

namespace {

/// As sha256sum tells them; scripts/networks holds what it makes to the same list.
constexpr std::string_view kSums =
#include "networkSums.inc"
    ;

constexpr std::string_view listedSum(std::string_view file) {
    constexpr std::size_t kDigits = 64;
    constexpr std::string_view kGap = "  ";
    for (std::size_t line = kSums.find('\n') + 1; line < kSums.size(); line = kSums.find('\n', line) + 1) {
        const std::size_t name = line + kDigits + kGap.size();
        if (kSums.substr(name, kSums.find('\n', name) - name) == file) return kSums.substr(line, kDigits);
    }
    return {};
}

constexpr KnownNetwork listed(const char* file, const char* purpose) {
    return {file, purpose, listedSum(file)};
}

constexpr std::array kNetworks{listed("faceDetector.onnx", "finds faces"),
                               listed("faceMesh.onnx", "tells a face's shape, and whether it is one"),
                               listed("refinedMesh.onnx", "tells a face's shape more closely"),
                               listed("refinedLips.onnx", "follows the lips"),
                               listed("refinedLeftEye.onnx", "follows the left eye, its brow and iris"),
                               listed("refinedRightEye.onnx", "follows the right eye, its brow and iris"),
                               listed("personMask.onnx", "tells persons from what is around them")};

constexpr KnownNetwork kDepth{"depth/portrait_depth.onnx", "estimates how near things are",
                              ZEL_DEPTH_NETWORK_SUM};

static_assert(std::ranges::none_of(kNetworks, [](const auto& network) { return network.sum.empty(); }),
              "each network has a sum");

}  // namespace

std::span<const KnownNetwork> knownNetworks() {
    return kNetworks;
}

const KnownNetwork& depthNetwork() {
    return kDepth;
}

std::string_view sumOf(std::string_view file) {
    return listedSum(file);
}

}  // namespace zel
