#pragma once

/// Marks what the shared library shows to a host. Everything else stays hidden.
#define ZEL_EXPORT __attribute__((visibility("default")))
