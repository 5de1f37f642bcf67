#pragma once

#include <string>

#include "libzel/depthPool.h"

namespace zel {

/// A loaded depth network, the one that was told or the project's own, on loan from a context.
class LentDepth {
public:
    /// @param told    a file, or a folder that holds one; null: the own network below the folder with the assets
    /// Throws a Failure where it cannot be had.
    LentDepth(DepthPool& pool, const std::string& assets, const char* told);
    ~LentDepth();
    LentDepth(const LentDepth&) = delete;
    LentDepth& operator=(const LentDepth&) = delete;

    zellab::PortraitDepth* operator->() const { return m_network.get(); }

private:
    DepthPool& m_pool;
    const std::string m_file;
    DepthPool::Network m_network;
};

}  // namespace zel
