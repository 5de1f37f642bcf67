#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace zeltest {

/// A buffer between two runs of a known byte, for operations that must not write beside it.
class GuardedBuffer {
public:
    explicit GuardedBuffer(std::size_t size, unsigned char fill = kGuard)
        : m_bytes(size + 2 * kMargin, kGuard), m_size(size) {
        if (size > 0) std::fill(m_bytes.begin() + kMargin, m_bytes.end() - kMargin, fill);
    }
    unsigned char* data() { return m_bytes.data() + kMargin; }
    std::size_t size() const { return m_size; }
    unsigned char operator[](std::size_t i) const { return m_bytes[kMargin + i]; }

    bool guardsIntact() const {
        const auto isGuard = [](unsigned char b) { return b == kGuard; };
        return std::all_of(m_bytes.begin(), m_bytes.begin() + kMargin, isGuard) &&
               std::all_of(m_bytes.end() - kMargin, m_bytes.end(), isGuard);
    }
    bool allAre(unsigned char value) const {
        return std::all_of(m_bytes.begin() + kMargin, m_bytes.end() - kMargin,
                           [=](unsigned char b) { return b == value; });
    }

private:
    static constexpr unsigned char kGuard = 0x66;
    static constexpr std::ptrdiff_t kMargin = 64;
    std::vector<unsigned char> m_bytes;
    std::size_t m_size;
};

}  // namespace zeltest
