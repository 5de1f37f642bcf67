#pragma once

namespace zellab::Bokeh {

/// One line of the scene's debug log.
[[gnu::format(printf, 1, 2)]] void logSceneDebug(const char* format, ...);

/// One line of the scene's error log.
[[gnu::format(printf, 1, 2)]] void logSceneError(const char* format, ...);

}  // namespace zellab::Bokeh
