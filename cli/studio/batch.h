#pragma once

#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "cli/studio/chain.h"
#include "cli/studio/folder.h"
#include "cli/studio/planes.h"
#include "cli/studio/workQueue.h"

namespace zelcli::studio {

/// One chain over many pictures of the folder, one after the other; previews go on between them.
class Batch {
public:
    Batch(const Folder& folder, WorkQueue& queue, Planes& planes)
        : m_folder(folder), m_queue(queue), m_planes(planes) {}
    ~Batch();
    Batch(const Batch&) = delete;
    Batch& operator=(const Batch&) = delete;

    /// Outputs get the names of their pictures, in a folder below. A picture whose output is there already is left
    /// out unless `replacing`. Throws Refused where a batch runs, and where the chain holds nothing for others.
    void start(const Chain& chain, const std::vector<std::string>& names, const std::string& below,
               bool replacing);
    Json state();
    /// After the picture at work.
    void cancel();

private:
    struct Fault {
        std::string name, why;
    };
    struct State {
        bool running = false;
        std::size_t total = 0, done = 0, skipped = 0;
        std::string current, below;
        std::vector<std::string> left;  // titles of steps that belong to one picture
        std::vector<Fault> faults;
    };

    void work(const std::stop_token& stop, const std::vector<std::string>& names, bool replacing);
    void process(const std::string& name, bool replacing);

    const Folder& m_folder;
    WorkQueue& m_queue;
    Planes& m_planes;
    std::mutex m_mutex;
    State m_state;
    Chain m_chain;
    std::jthread m_thread;
};

}  // namespace zelcli::studio
