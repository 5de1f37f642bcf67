#pragma once

#include <opencv2/core/utils/logger.hpp>

namespace zel::module {

/// Keeps the library's own lines off the standard streams while it lives. The level is one for the process:
/// the first guard remembers the host's setting and the last one restores it.
class QuietLibrary {
public:
    QuietLibrary();
    ~QuietLibrary();
    QuietLibrary(const QuietLibrary&) = delete;
    QuietLibrary& operator=(const QuietLibrary&) = delete;
};

/// Limits the number of threads of the library's loops while it lives; 0 leaves it as it is. The number is one
/// for the process: a guard of another number waits until those that live are gone.
class ThreadCount {
public:
    explicit ThreadCount(int threads);
    ~ThreadCount();
    ThreadCount(const ThreadCount&) = delete;
    ThreadCount& operator=(const ThreadCount&) = delete;
};

}  // namespace zel::module
