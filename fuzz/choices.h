#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace zelfuzz {

/// Choices from the input; zeros where it ends.
class Choices {
public:
    Choices(const std::uint8_t* data, std::size_t size) : m_data(data), m_left(size) {}
    bool done() const { return m_left == 0; }
    unsigned byte() {
        if (m_left == 0) return 0;
        --m_left;
        return *m_data++;
    }
    /// One of `count`.
    std::size_t of(std::size_t count) { return byte() % count; }
    bool seldom() { return byte() == 255; }
    float any() {
        std::uint32_t bits = 0;
        for (int i = 0; i < 4; ++i) bits = bits << 8 | byte();
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
    /// A text of up to `longest` bytes.
    std::string text(std::size_t longest) {
        std::string text;
        for (std::size_t length = of(longest + 1); length > 0 && m_left > 0; --length)
            text += static_cast<char>(byte());
        return text;
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_left;
};

/// Which of `count` things a fuzzer of several tries: the one that ZEL_FUZZ_ONE names, and without it one that the
/// input chooses. The name `list` prints all names and ends the program.
template <typename NameAt>
std::size_t chosenOf(std::size_t count, Choices& choices, const NameAt& nameAt) {
    static const std::size_t kNamed = [&] {
        const char* const name = std::getenv("ZEL_FUZZ_ONE");
        if (!name) return count;
        for (std::size_t i = 0; i < count; ++i)
            if (!std::strcmp(name, nameAt(i))) return i;
        if (!std::strcmp(name, "list"))
            for (std::size_t i = 0; i < count; ++i) std::puts(nameAt(i));
        else
            std::fprintf(stderr, "no '%s' here\n", name);
        std::fflush(stdout);
        std::_Exit(std::strcmp(name, "list") ? 2 : 0);
    }();
    return kNamed < count ? kNamed : choices.of(count);
}

}  // namespace zelfuzz
