#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>

namespace zeltest {

/// Bytes between two pages that nobody may touch, right against one of them: one byte too far on that side
/// ends the test program, also inside libraries that no sanitizer watches. Guard bytes fill the gap on the
/// other side.
class GuardedBytes {
public:
    enum class Against { pageBehind, pageBefore };

    explicit GuardedBytes(std::size_t size, Against side = Against::pageBehind)
        : GuardedBytes(size, kGuard, side) {}
    GuardedBytes(std::size_t size, unsigned char fill, Against side = Against::pageBehind) : m_size(size) {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        m_room = (size + page - 1) / page * page;
        m_mapped = m_room + 2 * page;
        m_base = static_cast<unsigned char*>(
            mmap(nullptr, m_mapped, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(m_base + page, m_room, PROT_READ | PROT_WRITE);
        m_begin = m_base + page;
        std::fill(m_begin, m_begin + m_room, kGuard);
        m_data = side == Against::pageBefore ? m_begin : m_begin + m_room - size;
        std::fill_n(m_data, size, fill);
    }
    ~GuardedBytes() { munmap(m_base, m_mapped); }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    unsigned char* data() { return m_data; }
    std::size_t size() const { return m_size; }
    unsigned char operator[](std::size_t i) const { return m_data[i]; }

    bool guardsIntact() const {
        const auto isGuard = [](unsigned char b) { return b == kGuard; };
        return std::all_of(m_begin, m_data, isGuard) &&
               std::all_of(m_data + m_size, m_begin + m_room, isGuard);
    }
    bool allAre(unsigned char value) const {
        return std::all_of(m_data, m_data + m_size, [=](unsigned char b) { return b == value; });
    }

private:
    static constexpr unsigned char kGuard = 0x66;
    std::size_t m_size, m_room = 0, m_mapped = 0;
    unsigned char *m_base = nullptr, *m_begin = nullptr, *m_data = nullptr;
};

}  // namespace zeltest
