#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zelcli::studio {

/// Where the server listens, and what only its own page knows.
struct Address {
    int port = 0;
    std::string secret;  // the first part of every path
};

/// What is known of a request before its body is read. Names of headers in any case.
struct RequestHead {
    std::string method, path;
    std::vector<std::pair<std::string, std::string>> headers;
};

struct Refusal {
    int status;
    const char* why;
};

/// 128 random bits in hexadecimal digits.
std::string makeSecret();

/// "http://127.0.0.1:PORT/SECRET/"
std::string pageAddress(const Address& address);

/// Why a request may not pass. Only the page that this server gave out gets in: the path must hold the secret;
/// Host must name the loopback address, or another site's name was made to point here; a request that another
/// site's page sent shows by its Origin, and one that changes anything must show ours. Bodies have a told length
/// within the limits and no coding: what unpacks could unpack to anything.
std::optional<Refusal> refusalOf(const RequestHead& head, const Address& address);

/// The path behind the secret. Only of a request that passed.
std::string pathBehindSecret(const std::string& path);

/// Largest bodies: pictures and masks, and everything else.
constexpr std::size_t kLargestUpload = std::size_t{512} << 20, kLargestText = std::size_t{4} << 20;

}  // namespace zelcli::studio
