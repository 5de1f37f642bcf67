#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstring>

namespace zeltest {

/// Bytes that end where a page begins that nobody may touch: one byte too far ends the test program, also
/// inside libraries that no sanitizer watches.
class GuardedBytes {
public:
    explicit GuardedBytes(std::size_t size) : m_size(size) {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        m_mapped = (size + page - 1) / page * page + page;
        m_base = static_cast<unsigned char*>(
            mmap(nullptr, m_mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(m_base + m_mapped - page, page, PROT_NONE);
        m_data = m_base + m_mapped - page - size;
    }
    ~GuardedBytes() { munmap(m_base, m_mapped); }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    unsigned char* data() { return m_data; }
    std::size_t size() const { return m_size; }

private:
    std::size_t m_size, m_mapped = 0;
    unsigned char* m_base = nullptr;
    unsigned char* m_data = nullptr;
};

}  // namespace zeltest
