#pragma once

#include <cstdio>

namespace zellab::platform {

/// Text colours of the log, by their console attribute numbers.
enum class ConsoleColour { brightCyan = 11, brightRed = 12, brightWhite = 15 };

/// Sets the text colour of standard output until the next call. Nothing is written where standard output
/// is no terminal.
void setConsoleColour(ConsoleColour colour);

/// Holds a stream for one thread, so that a message printed in pieces stays whole.
class StreamLock {
public:
    explicit StreamLock(std::FILE* stream);
    ~StreamLock();
    StreamLock(const StreamLock&) = delete;
    StreamLock& operator=(const StreamLock&) = delete;

private:
    std::FILE* m_stream;
};

}  // namespace zellab::platform
