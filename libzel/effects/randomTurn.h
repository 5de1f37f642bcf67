#pragma once

#include <cstdlib>
#include <mutex>

namespace zel {

/// For work that draws on rand(), of which a process has one: while the object lives no other such work of this
/// library runs, and the numbers begin at the seed, so that the same call gives the same bytes. A host that
/// draws on rand() meanwhile takes numbers away, and finds it seeded anew afterwards.
class RandomTurn {
public:
    explicit RandomTurn(unsigned seed) : m_turn(mutex()) { std::srand(seed); }

private:
    static std::mutex& mutex() {
        static std::mutex only;
        return only;
    }
    std::lock_guard<std::mutex> m_turn;
};

}  // namespace zel
