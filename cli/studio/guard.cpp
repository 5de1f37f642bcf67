#include "cli/studio/guard.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <random>

namespace zelcli::studio {

namespace {

constexpr std::size_t kLongestPath = 1024;

bool sameName(const std::string& a, const char* lower) {
    std::size_t i = 0;
    for (; i < a.size() && lower[i]; ++i)
        if ((a[i] >= 'A' && a[i] <= 'Z' ? a[i] + ('a' - 'A') : a[i]) != lower[i]) return false;
    return i == a.size() && !lower[i];
}

std::vector<std::string> valuesOf(const RequestHead& head, const char* lowerName) {
    std::vector<std::string> values;
    for (const auto& [name, value] : head.headers)
        if (sameName(name, lowerName)) values.push_back(value);
    return values;
}

/// In a time that does not tell how much of it was right.
bool sameSecret(const std::string& given, const std::string& secret) {
    if (given.size() != secret.size()) return false;
    unsigned difference = 0;
    for (std::size_t i = 0; i < secret.size(); ++i)
        difference |= static_cast<unsigned char>(given[i]) ^ static_cast<unsigned char>(secret[i]);
    return difference == 0;
}

bool holdsSecret(const std::string& path, const Address& address) {
    const std::size_t length = address.secret.size();
    return path.size() >= length + 2 && path[0] == '/' && path[length + 1] == '/' &&
           sameSecret(path.substr(1, length), address.secret);
}

/// Paths whose bodies are pixels.
bool takesPixels(const std::string& path) {
    return path == "api/upload" || path == "api/plane";
}

std::optional<Refusal> bodyRefusal(const RequestHead& head) {
    if (!valuesOf(head, "transfer-encoding").empty()) return Refusal{411, "a body needs its length"};
    if (!valuesOf(head, "content-encoding").empty()) return Refusal{415, "bodies come uncoded"};
    const auto lengths = valuesOf(head, "content-length");
    if (lengths.size() != 1) return Refusal{411, "a body needs its length"};
    const std::string& text = lengths[0];
    std::uint64_t length = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), length);
    if (error != std::errc() || end != text.data() + text.size() || text.empty())
        return Refusal{400, "the length is no number"};
    const bool pixels = takesPixels(pathBehindSecret(head.path));
    if (length > (pixels ? kLargestUpload : kLargestText)) return Refusal{413, "the body is too large"};
    const auto types = valuesOf(head, "content-type");
    const char* const type = pixels ? "application/octet-stream" : "application/json";
    if (types.size() != 1 || !sameName(types[0], type)) return Refusal{415, "the body has another type"};
    return std::nullopt;
}

}  // namespace

std::string makeSecret() {
    std::random_device random;
    std::string secret;
    for (int word = 0; word < 4; ++word) {
        char digits[9];
        std::snprintf(digits, sizeof digits, "%08x", random());
        secret += digits;
    }
    return secret;
}

std::string pageAddress(const Address& address) {
    return "http://127.0.0.1:" + std::to_string(address.port) + "/" + address.secret + "/";
}

std::optional<Refusal> refusalOf(const RequestHead& head, const Address& address) {
    const std::string port = std::to_string(address.port);
    const auto hosts = valuesOf(head, "host");
    if (hosts.size() != 1 ||
        (hosts[0] != "127.0.0.1:" + port && !sameName(hosts[0], ("localhost:" + port).c_str())))
        return Refusal{403, "this is another host"};
    if (head.path.size() > kLongestPath) return Refusal{414, "the path is too long"};
    if (!holdsSecret(head.path, address)) return Refusal{404, "there is nothing here"};
    const auto origins = valuesOf(head, "origin");
    for (const std::string& origin : origins)
        if (origin != "http://" + hosts[0]) return Refusal{403, "the request comes from another page"};
    for (const std::string& site : valuesOf(head, "sec-fetch-site"))
        if (site != "same-origin" && site != "none")
            return Refusal{403, "the request comes from another page"};
    if (!valuesOf(head, "range").empty()) return Refusal{416, "answers come whole"};
    if (head.method == "GET" || head.method == "HEAD") {
        const auto lengths = valuesOf(head, "content-length");
        const bool empty = lengths.empty() || (lengths.size() == 1 && lengths[0] == "0");
        if (!empty || !valuesOf(head, "transfer-encoding").empty())
            return Refusal{400, "a question has no body"};
        return std::nullopt;
    }
    if (head.method != "POST") return Refusal{405, "there is no such method"};
    if (origins.size() != 1) return Refusal{403, "the request comes from no page"};
    return bodyRefusal(head);
}

std::string pathBehindSecret(const std::string& path) {
    const auto slash = path.find('/', 1);
    return slash == std::string::npos ? std::string() : path.substr(slash + 1);
}

}  // namespace zelcli::studio
