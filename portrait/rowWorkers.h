#pragma once

#include <functional>

namespace zel::drawing {

/// Calls body(yBegin, yEnd) on disjoint bands of rows that cover [0, height), on as many threads as the
/// machine has. The bands depend on the height alone. The first exception of a band is rethrown after all
/// have ended.
void forRowBands(int height, const std::function<void(int, int)>& body);

}  // namespace zel::drawing
