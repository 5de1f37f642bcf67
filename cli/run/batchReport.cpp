#include "cli/run/batchReport.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

namespace zelcli {

namespace {

using State = Outcome::State;

auto countOf(const std::vector<Outcome>& outcomes, State state) {
    return std::count_if(outcomes.begin(), outcomes.end(),
                         [state](const Outcome& o) { return o.state == state; });
}

const char* wordFor(State state) {
    switch (state) {
        case State::done:
            return "done";
        case State::skipped:
            return "skipped";
        case State::failed:
            return "failed";
        case State::notBegun:
            break;
    }
    return "notBegun";
}

double rounded(double seconds) {
    return std::round(seconds * 1000) / 1000;
}

}  // namespace

std::string closingLine(const std::vector<Outcome>& outcomes, double seconds, bool interrupted) {
    char time[32];
    std::snprintf(time, sizeof time, " in %.1f s", seconds);
    std::string line = interrupted ? "interrupted: " : "";
    line += std::to_string(countOf(outcomes, State::done)) + " done, " +
            std::to_string(countOf(outcomes, State::skipped)) + " skipped, " +
            std::to_string(countOf(outcomes, State::failed)) + " failed";
    if (interrupted) line += ", " + std::to_string(countOf(outcomes, State::notBegun)) + " not begun";
    return line + time;
}

std::string reportJson(const std::vector<Outcome>& outcomes, double seconds, bool interrupted) {
    using Json = nlohmann::ordered_json;
    Json pictures = Json::array();
    for (const Outcome& outcome : outcomes)
        pictures.push_back({{"input", outcome.input},
                            {"output", outcome.output},
                            {"state", wordFor(outcome.state)},
                            {"why", outcome.why},
                            {"notes", outcome.notes},
                            {"seconds", rounded(outcome.seconds)}});
    Json report;
    for (const State state : {State::done, State::skipped, State::failed, State::notBegun})
        report[wordFor(state)] = countOf(outcomes, state);
    report["seconds"] = rounded(seconds);
    report["interrupted"] = interrupted;
    report["pictures"] = pictures;
    // File names need not be UTF-8.
    return report.dump(1, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace zelcli
