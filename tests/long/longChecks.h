#pragma once

#include <cstdio>
#include <string>

#include "zel/zel.h"

/// The checks that take long. Each prints a line a call, and answers whether all went as it must.

namespace zeltest {

/// Where the checks print: standard output as the program found it. Its own streams lead nowhere, since the library
/// logs to both.
std::FILE* report();

/// @param seconds  about what one call may take in all; where its failures are too many every so many are tried
/// @param name     of the one call that is meant; empty: all
/// @param first    which failure to begin with
bool checkFaults(zel_context* context, double seconds, const std::string& name, long first);

/// All sides from 1 to 64, as many as the seconds allow, and the longest rows and columns.
bool checkSizes(zel_context* context, double seconds, const std::string& name);

/// A picture of a hundred megapixels.
bool checkLarge(zel_context* context, const std::string& name);

/// A thousand mixed calls on 64 threads, against the bytes of calls in turn.
bool checkThreads(zel_context* context, const std::string& name);

}  // namespace zeltest
