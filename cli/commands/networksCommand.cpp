#include "cli/commands/networksCommand.h"

#include <algorithm>
#include <cstring>
#include <nlohmann/json.hpp>

#include "cli/library.h"

namespace zelcli {

namespace {

using Networks = std::vector<libzel::Network>;

const char* stateOf(const libzel::Network& network) {
    if (network.problem.empty()) return "ready";
    return network.path.empty() ? "missing" : "unusable";
}

/// A line for each network, and one for each thing that is wrong with any.
std::string table(const Networks& networks) {
    constexpr std::size_t kGap = 2;
    std::size_t nameWidth = 0, stateWidth = 0, purposeWidth = 0;
    for (const libzel::Network& network : networks) {
        nameWidth = std::max(nameWidth, network.name.size() + kGap);
        stateWidth = std::max(stateWidth, std::strlen(stateOf(network)) + kGap);
        purposeWidth = std::max(purposeWidth, network.purpose.size() + kGap);
    }
    const auto padded = [](std::string text, std::size_t width) {
        return text.append(width - text.size(), ' ');
    };
    std::string text;
    std::vector<std::string> problems;
    for (const libzel::Network& network : networks) {
        std::string line = padded(network.name, nameWidth) + padded(stateOf(network), stateWidth);
        line += network.path.empty() ? network.purpose : padded(network.purpose, purposeWidth) + network.path;
        text += line + "\n";
        const std::string problem = std::string(stateOf(network)) + ": " + network.problem;
        if (!network.problem.empty() &&
            std::find(problems.begin(), problems.end(), problem) == problems.end())
            problems.push_back(problem);
    }
    for (const std::string& problem : problems) text += problem + "\n";
    return text;
}

std::string json(const Networks& networks) {
    auto list = nlohmann::ordered_json::array();
    for (const libzel::Network& network : networks)
        list.push_back({{"name", network.name},
                        {"purpose", network.purpose},
                        {"state", stateOf(network)},
                        {"path", network.path},
                        {"problem", network.problem}});
    // A path may hold bytes that are no text.
    return nlohmann::ordered_json{{"networks", list}}.dump(2, ' ', false,
                                                           nlohmann::ordered_json::error_handler_t::replace) +
           "\n";
}

}  // namespace

std::string networksText(const NetworksOptions& options) {
    Messages messages(false);
    const LibraryVoice voice(messages, false, options.assets);
    const Networks networks = libzel::networks(library());
    return options.json ? json(networks) : table(networks);
}

}  // namespace zelcli
