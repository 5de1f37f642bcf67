#include "platform/console.h"

#include <windows.h>

namespace zellab::platform {

void setConsoleColour(ConsoleColour colour) {
    // Fails, and does nothing, where standard output is no console.
    SetConsoleTextAttribute(GetStdHandle(STD_OUTPUT_HANDLE), static_cast<WORD>(colour));
}

StreamLock::StreamLock(std::FILE* stream) : m_stream(stream) {
    _lock_file(m_stream);
}
StreamLock::~StreamLock() {
    _unlock_file(m_stream);
}

}  // namespace zellab::platform
