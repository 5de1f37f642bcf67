#pragma once

#include <cstddef>
#include <functional>

namespace zelcli {

/// Calls work(0) .. work(count - 1), at most `jobs` at once, and returns when all are through. Every thread
/// is joined. `work` deals with its own failures: an exception that leaves it ends the program.
void runJobs(std::size_t count, unsigned jobs, const std::function<void(std::size_t)>& work);

}  // namespace zelcli
