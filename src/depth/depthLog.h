#pragma once

namespace zellab {

/// One line of the depth engine's debug channel on standard error: "[DEBUG  ] ", the message, a line feed.
[[gnu::format(printf, 1, 2)]] void logDepth(const char* format, ...);

}  // namespace zellab
