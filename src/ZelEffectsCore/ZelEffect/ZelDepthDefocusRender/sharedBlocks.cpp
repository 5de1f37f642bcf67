#include "ZelEffectsCore/ZelEffect/ZelDepthDefocusRender/sharedBlocks.h"

#include <cstdlib>
#include <map>
#include <mutex>

namespace DefocusCore {
namespace {

std::mutex g_mutex;

/// Holders beyond the first. A block that was never shared has no entry, so that a host's own block may take
/// the place of one of ours.
std::map<const void*, int>& furtherHolders() {
    static std::map<const void*, int> holders;
    return holders;
}

}  // namespace

void retainShared(const void* block) {
    if (!block) return;
    const std::lock_guard lock(g_mutex);
    ++furtherHolders()[block];
}

bool releaseShared(const void* block) {
    const std::lock_guard lock(g_mutex);
    const auto entry = furtherHolders().find(block);
    if (entry == furtherHolders().end()) return true;
    if (--entry->second == 0) furtherHolders().erase(entry);
    return false;
}

void freeShared(void* block) {
    if (block && releaseShared(block)) std::free(block);
}

}  // namespace DefocusCore
