// Every operation and effect on pictures of every small size, of the longest rows and columns, and of a hundred
// megapixels: nothing beside a buffer is touched, and a call of the C interface is done or gives its reason.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <utility>

#include "attempts.h"
#include "longChecks.h"

namespace zeltest {

namespace {

constexpr int kSides = 64;

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// All pairs of sides in an order that has early ones of every kind.
std::vector<std::pair<int, int>> smallSizes() {
    std::vector<std::pair<int, int>> sizes;
    for (int height = 1; height <= kSides; ++height)
        for (int width = 1; width <= kSides; ++width) sizes.emplace_back(width, height);
    std::shuffle(sizes.begin(), sizes.end(), std::mt19937(1));
    return sizes;
}

bool isSoundAt(const Deed& deed, int width, int height, int& changed) {
    const std::unique_ptr<Attempt> attempt = deed.prepare(width, height);
    const bool isDone = attempt->run();
    const bool isUntouched = attempt->isUntouched();
    changed += !isUntouched;
    const bool isSound = attempt->isIntact() && (isDone || isUntouched);
    if (!isSound) std::fprintf(report(), "%-30s FAULT at %d by %d\n", deed.name.c_str(), width, height);
    return isSound;
}

}  // namespace

bool checkSizes(zel_context* context, double seconds, const std::string& name) {
    bool isSound = true;
    const auto sizes = smallSizes();
    for (const Deed& deed : pictureDeeds(context)) {
        if (!name.empty() && deed.name != name) continue;
        int tried = 0, changed = 0;
        const double begin = now();
        for (const auto& [width, height] : {std::pair{ZEL_LONGEST_SIDE, 1}, {1, ZEL_LONGEST_SIDE}})
            isSound = isSoundAt(deed, width, height, changed) && isSound;
        for (const auto& [width, height] : sizes) {
            if (now() - begin > seconds) break;
            isSound = isSoundAt(deed, width, height, changed) && isSound;
            ++tried;
        }
        std::fprintf(report(), "%-30s %d of %zu small sizes and both long ones; %d pictures changed\n",
                     deed.name.c_str(), tried, sizes.size(), changed);
        std::fflush(report());
    }
    return isSound;
}

bool checkLarge(zel_context* context, const std::string& name) {
    bool isSound = true;
    for (const Deed& deed : pictureDeeds(context)) {
        if (!name.empty() && deed.name != name) continue;
        int changed = 0;
        const double begin = now();
        isSound = isSoundAt(deed, 12000, 8400, changed) && isSound;
        std::fprintf(report(), "%-30s 100.8 megapixels %s, %.0f s with making them\n", deed.name.c_str(),
                     changed ? "changed" : "left as they were", now() - begin);
        std::fflush(report());
    }
    return isSound;
}

}  // namespace zeltest
