#pragma once

#include <algorithm>
#include <cstddef>
#include <exception>
#include <new>
#include <opencv2/core.hpp>

namespace zel::module {

/// The caller's buffer for the line that says why something failed.
class ReasonText {
public:
    ReasonText(char* text, std::size_t size) : m_text(text), m_size(size) { tell(""); }

    void tell(const char* why) {
        if (!m_text || m_size == 0) return;
        std::size_t length = 0;
        for (; length + 1 < m_size && why[length]; ++length)
            m_text[length] = static_cast<unsigned char>(why[length]) < ' ' ? ' ' : why[length];
        m_text[length] = '\0';
    }

private:
    char* m_text;
    std::size_t m_size;
};

/// Gives what work() returns; where it throws, tells why and gives `failed`.
template <typename Result, typename Work>
Result guarded(ReasonText& reason, Result failed, const Work& work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        reason.tell("there is not enough memory for it");
    } catch (const cv::Exception& problem) {
        reason.tell(problem.err.c_str());  // without the library's own places in its sources
    } catch (const std::exception& problem) {
        reason.tell(problem.what());
    } catch (...) {
        reason.tell("it failed for no told reason");
    }
    return failed;
}

}  // namespace zel::module
