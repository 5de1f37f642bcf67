#pragma once

/// Marks what the shared library shows to a host. Everything else stays hidden.
#ifdef _WIN32
// A list of names says what the library shows, and functions are reached without a mark of their own.
#define ZEL_EXPORT
#else
#define ZEL_EXPORT __attribute__((visibility("default")))
#endif
