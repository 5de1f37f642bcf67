#pragma once

#include <string>

namespace zellab {

enum class LogLevel { error, debug, info };

/// What a host has set for one of its calls, in place of what the process has. Reaches everything that works for
/// the call: the calling thread while a CallScope lives, and the threads that it starts.
struct CallSettings {
    /// Takes every message of the call in place of the standard streams. Called from any of its threads.
    /// `source` is "file(line)" of an error, else null.
    using Log = void (*)(void* user, LogLevel level, const char* message, const char* source);

    Log log = nullptr;  // null: the standard streams, or nothing
    void* logUser = nullptr;
    bool silent = false;            // nobody listens: without a log messages are not even put together
    int workers = 0;                // 0: the machine's processors
    bool findsAssetsAlone = false;  // assets lie in `assets` and nowhere else
    std::string assets = {};        // folder; empty: there is none
};

/// Of the call that this thread works for; null where none was set.
const CallSettings* callSettings();

/// The settings of this thread while the object lives. Settings must outlive it.
class CallScope {
public:
    explicit CallScope(const CallSettings* settings);
    ~CallScope();
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;

private:
    const CallSettings* m_previous;
};

}  // namespace zellab
