#pragma once

#include <cstddef>
#include <span>
#include <string>

/// The streams that a program has from its parent, byte by byte.

namespace zellab::platform {

/// Waits for bytes on standard input. @return how many came, 0 at the end, -1 on failure with errno set
std::ptrdiff_t readStandardInput(void* into, std::size_t most);

/// Writes all of it. False on failure, with errno set.
bool writeStandardOutput(std::span<const unsigned char> bytes);

/// A standard error stream of one's own: diverting the common one leaves it as it is, and child processes do not
/// get it.
class ErrorStream {
public:
    ErrorStream();
    ~ErrorStream();
    ErrorStream(const ErrorStream&) = delete;
    ErrorStream& operator=(const ErrorStream&) = delete;

    /// One write where the system lets it, which keeps lines whole between processes. What nobody listens to is
    /// lost.
    void write(const std::string& text) const;

    /// Whether a person looks at the common stream.
    static bool isTerminal();

private:
    int m_descriptor;
};

}  // namespace zellab::platform
