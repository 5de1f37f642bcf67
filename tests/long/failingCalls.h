#pragma once

#include <cstddef>

/// Allocations and thread starts of this whole program, libraries included, which can be counted and made to fail.

namespace zeltest {

enum class Supply { memory, threads };

/// From now on the k-th allocation (or thread start) fails, counted from 0; none for a k below 0.
void startCounting(Supply supply, long k);
/// What was asked for since; counting ends.
long endCounting();
/// Whether the failure came to pass.
bool hasFailed();
/// Where to note whose code asked for what failed: the file of a library, or of this program.
void showFailurePlace(char* text, std::size_t room);
/// Blocks that were taken and not yet given back.
long liveBlocks();

}  // namespace zeltest
