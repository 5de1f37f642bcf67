#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace zellab::platform {

/// One field of a protocol-buffer message.
struct WireField {
    std::uint64_t number = 0;
    bool isBytes = false;                  // else a number
    std::uint64_t value = 0;               // a number of whatever width
    std::span<const unsigned char> bytes;  // a text, or a message within

    std::string text() const { return {bytes.begin(), bytes.end()}; }
};

/// Steps through the fields of a message, one level deep. Any bytes may be given: what does not fit stops the
/// walk and leaves `failed` true.
class WireReader {
public:
    explicit WireReader(std::span<const unsigned char> message) : m_rest(message) {}

    /// The next field; false at the end, or at the first fault.
    bool next(WireField& field);
    /// The same where the message is a row of numbers without heads.
    bool nextNumber(std::uint64_t& value);
    bool failed() const { return m_failed; }

private:
    bool varint(std::uint64_t& value);
    bool fixed(std::size_t width, std::uint64_t& value);
    bool lengthAndBytes(std::span<const unsigned char>& bytes);

    std::span<const unsigned char> m_rest;
    bool m_failed = false;
};

}  // namespace zellab::platform
