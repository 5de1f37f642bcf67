#pragma once

#include <list>
#include <memory>
#include <mutex>
#include <string>

#include "cli/files/image.h"

namespace zelcli::studio {

/// Masks and depth maps that the page painted, by names made of their contents: the same plane has the same name
/// again. The oldest go when there are too many; the page then brings them anew.
class Planes {
public:
    /// One byte a pixel, the top row first. Throws Refused where size and bytes do not agree.
    std::string keep(int width, int height, const std::string& samples);

    /// Throws Refused, status 410, where it is not there.
    std::shared_ptr<Mask> find(const std::string& name);

private:
    struct Kept {
        std::string name;
        std::shared_ptr<Mask> plane;
    };
    std::mutex m_mutex;
    std::list<Kept> m_kept;  // the newest first
    std::size_t m_bytes = 0;
};

}  // namespace zelcli::studio
