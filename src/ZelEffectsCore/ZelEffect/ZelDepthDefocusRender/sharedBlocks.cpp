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

/// Expects the lock to be held.
bool dropHolder(const void* block) {
    const auto entry = furtherHolders().find(block);
    if (entry == furtherHolders().end()) return true;
    if (--entry->second == 0) furtherHolders().erase(entry);
    return false;
}

}  // namespace

void retainShared(std::initializer_list<const void*> blocks) {
    const std::lock_guard lock(g_mutex);
    const auto* next = blocks.begin();
    try {
        for (; next != blocks.end(); ++next)
            if (*next) ++furtherHolders()[*next];
    } catch (...) {  // no memory for an entry
        while (next != blocks.begin()) dropHolder(*--next);
        throw;
    }
}

bool releaseShared(const void* block) {
    const std::lock_guard lock(g_mutex);
    return dropHolder(block);
}

void freeShared(void* block) {
    if (block && releaseShared(block)) std::free(block);
}

}  // namespace DefocusCore
