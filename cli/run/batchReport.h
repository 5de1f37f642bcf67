#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace zelcli {

/// What became of one input.
struct Outcome {
    enum class State { notBegun, done, skipped, failed };
    State state = State::notBegun;
    std::string input, output;
    std::string why;  // of a failure or a skip
    std::vector<std::string> notes;
    double seconds = 0;
};

/// "12 done, 1 skipped, 2 failed in 34.5 s".
std::string closingLine(const std::vector<Outcome>& outcomes, double seconds, bool interrupted);

/// The same and every outcome, for scripts:
/// {"done", "skipped", "failed", "notBegun", "seconds", "interrupted",
///  "pictures": [{"input", "output", "state", "why", "notes", "seconds"}]}.
std::string reportJson(const std::vector<Outcome>& outcomes, double seconds, bool interrupted);

}  // namespace zelcli
