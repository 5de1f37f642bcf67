#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace zel {

/// One output of a network: its name in the file, and how many floats it has.
struct NetworkOutput {
    const char* name;
    std::size_t count;
};

/// What a network file must hold.
struct NetworkKind {
    const char* file;          // name in the folder with the networks
    std::array<int, 4> input;  // pictures (1), channels, height, width
    std::span<const NetworkOutput> outputs;

    std::size_t inputCount() const;  // floats
};

/// A score as networks tell it, as a share of 1.
inline float sigmoid(float x) {
    return 1 / (1 + std::exp(-x));
}

/// A network that was loaded could not run.
class NetworkFailure : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A network of the process. Any number of threads may run it at once: each has an instance of its own while it
/// does, up to a bound, beyond which they wait. One run takes one thread, so that its numbers do not depend on
/// how many processors there are or have time.
class Network {
public:
    /// Loads the file, tries it once, and keeps it for the next who asks, until the file changes. Under a name that
    /// this library knows (knownNetworks.h) no other network is loaded.
    /// @param reason  one line that names the file and what is wrong, where null is returned
    static std::shared_ptr<Network> load(const std::string& folder, const NetworkKind& kind,
                                         std::string& reason);

    ~Network();
    Network(const Network&) = delete;
    Network& operator=(const Network&) = delete;

    /// The outputs in the kind's order.
    /// @param input  as many floats as the kind tells, the last dimension fastest
    /// Throws NetworkFailure.
    std::vector<std::vector<float>> run(const std::vector<float>& input);

private:
    struct Instances;
    Network(std::vector<unsigned char> file, const NetworkKind& kind);

    std::unique_ptr<Instances> m_instances;
};

}  // namespace zel
