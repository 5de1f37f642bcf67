#pragma once

#include <cstdlib>
#include <memory>

namespace zellab {

/// A table that an effect reads at run time: four bytes a pixel, row after row.
struct StyleAsset {
    int width = 0, height = 0;
    std::unique_ptr<unsigned char, decltype(&std::free)> pixels{nullptr, std::free};
};

/// Loads "style/base/...". Without pixels where nothing lies there, which the loader and its callers report, and
/// where something does that cannot be read: an effect that goes on without it would give another picture,
/// and this line alone would tell why.
StyleAsset loadStyleAsset(const char* path);

}  // namespace zellab
