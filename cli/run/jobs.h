#pragma once

#include <cstddef>
#include <functional>

namespace zelcli {

/// How a run divides the processors: inputs at once, and threads that the library takes for each.
struct JobShare {
    unsigned jobs = 1;
    int threads = 0;  // 0: all
};

/// Shares the processors between `count` inputs. A picture in work takes up to a gigabyte and a half at 24 megapixels:
/// where nobody tells the number of jobs, they take no more than half of the memory.
/// @param asked  jobs as the user wants them; 0: by itself
JobShare shareJobs(unsigned asked, std::size_t count);

/// Calls work(0) .. work(count - 1), at most `jobs` at once, and returns when all are through. Every thread
/// is joined. `work` deals with its own failures: an exception that leaves it ends the program.
void runJobs(std::size_t count, unsigned jobs, const std::function<void(std::size_t)>& work);

}  // namespace zelcli
