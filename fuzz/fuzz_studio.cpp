// Requests to the studio before anything is done for them: whoever passes the guard has the secret and is the page,
// and any text as a chain is a chain or refused.
#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "cli/studio/chain.h"
#include "cli/studio/guard.h"

using namespace zelcli::studio;

namespace {

/// "METHOD PATH", then "Name: value" lines.
RequestHead headOf(const std::string& text) {
    RequestHead head;
    std::size_t at = 0;
    for (bool first = true; at < text.size(); first = false) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string line = text.substr(at, end - at);
        at = end + 1;
        const std::size_t split = line.find(first ? " " : ": ");
        if (split == std::string::npos) continue;
        if (first) {
            head.method = line.substr(0, split);
            head.path = line.substr(split + 1);
        } else {
            head.headers.emplace_back(line.substr(0, split), line.substr(split + 2));
        }
    }
    return head;
}

bool namesUs(const RequestHead& head) {
    for (const auto& [name, value] : head.headers) {
        std::string lower = value;
        for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        if (lower == "127.0.0.1:80" || lower == "localhost:80") return true;
    }
    return false;
}

void checkGuard(const std::string& text) {
    const RequestHead head = headOf(text);
    if (refusalOf(head, {80, "s"})) return;
    if (head.path.rfind("/s/", 0) != 0 || !namesUs(head)) std::abort();
    if (head.method != "GET" && head.method != "HEAD" && head.method != "POST") std::abort();
    if (pathBehindSecret(head.path) != head.path.substr(3)) std::abort();
}

void checkChain(const std::string& text) {
    try {
        const Chain chain = parseChain(objectOf(text));
        std::vector<std::string> left;
        for (const Step& step : chainForAnyPicture(chain, left).steps)
            if (!step.mask.empty() || !whatLacks(step).empty()) std::abort();
    } catch (const Refused& refused) {
        if (refused.status() < 400 || refused.status() > 499) std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(input), size);
    checkGuard(text);
    checkChain(text);
    return 0;
}
