#pragma once

#include <unistd.h>

#include <cstdio>
#include <string>

namespace zeltest {

/// Takes what this process writes to one stream (stdout or stderr) while it is alive. The text goes through
/// a file, so it may be of any length and come from any thread.
class StreamCapture {
public:
    explicit StreamCapture(std::FILE* stream)
        : m_stream(stream), m_file(std::tmpfile()), m_saved(dup(fileno(stream))) {
        std::fflush(m_stream);
        dup2(fileno(m_file), fileno(m_stream));
    }
    ~StreamCapture() {
        std::fflush(m_stream);
        dup2(m_saved, fileno(m_stream));
        close(m_saved);
        std::fclose(m_file);
    }
    StreamCapture(const StreamCapture&) = delete;
    StreamCapture& operator=(const StreamCapture&) = delete;

    /// Everything so far.
    std::string text() {
        std::fflush(m_stream);
        std::string all;
        char buffer[4096];
        ssize_t got;
        while ((got = pread(fileno(m_file), buffer, sizeof buffer, static_cast<off_t>(all.size()))) > 0)
            all.append(buffer, static_cast<std::size_t>(got));
        return all;
    }

private:
    std::FILE* m_stream;
    std::FILE* m_file;
    int m_saved;
};

}  // namespace zeltest
