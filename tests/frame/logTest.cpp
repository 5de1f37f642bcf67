#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include <cstdio>
#include <thread>

#include "frame/zel_log.h"
#include "support/streamCapture.h"

using testing::MatchesRegex;

namespace {

TEST(Log, EachLevelHasItsTail) {
    zeltest::StreamCapture captured(stderr);
    ZEL_LOG_ERROR("%s(%d) param error.", "Name", 12);
    EXPECT_THAT(
        captured.text(),
        MatchesRegex("[0-9]{8} : Name\\(12\\) param error.\r\ntests/frame/logTest.cpp\\([0-9]+\\)\r\n"));
    const std::size_t first = captured.text().size();
    ZEL_LOG_DEBUG("+++mark+++");
    ZEL_LOG_INFO("100%%");
    EXPECT_THAT(captured.text().substr(first),
                MatchesRegex("[0-9]{8} : \\+\\+\\+mark\\+\\+\\+\r\n[0-9]{8} : 100%\r\n"));
    const std::size_t second = captured.text().size();
    ZEL_LOG_ERROR_AT("somewhere.cpp", 77, "fixed");
    EXPECT_THAT(captured.text().substr(second),
                MatchesRegex("[0-9]{8} : fixed\r\nsomewhere.cpp\\(77\\)\r\n"));
}

/// Standard output on a terminal of its own, while it is alive.
class TerminalOutput {
public:
    TerminalOutput() : m_saved(dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        if (openpty(&m_terminal, &m_line, nullptr, nullptr, nullptr) == 0) dup2(m_line, STDOUT_FILENO);
    }
    ~TerminalOutput() {
        dup2(m_saved, STDOUT_FILENO);
        for (int descriptor : {m_saved, m_terminal, m_line}) close(descriptor);
    }
    TerminalOutput(const TerminalOutput&) = delete;
    TerminalOutput& operator=(const TerminalOutput&) = delete;

    /// What was written since the last call; waits for it.
    std::string read() const {
        char buffer[256];
        const ssize_t got = ::read(m_terminal, buffer, sizeof buffer);
        return {buffer, static_cast<std::size_t>(got > 0 ? got : 0)};
    }

private:
    int m_saved, m_terminal = -1, m_line = -1;
};

TEST(Log, ColoursATerminalByLevelAndLeavesTheColour) {
    zeltest::StreamCapture text(stderr);
    TerminalOutput terminal;
    ZEL_LOG_ERROR("red");
    EXPECT_EQ(terminal.read(), "\033[91m");
    ZEL_LOG_DEBUG("cyan");
    EXPECT_EQ(terminal.read(), "\033[96m");
    ZEL_LOG_INFO("white");
    EXPECT_EQ(terminal.read(), "\033[97m");
    EXPECT_EQ(text.text().find('\033'), std::string::npos) << "the text's own stream gets no colour";
    zeltest::StreamCapture output(stdout);
    ZEL_LOG_ERROR("plain");
    EXPECT_EQ(output.text(), "") << "no terminal, no colour";
}

TEST(Log, MessagesOfManyThreadsStayWhole) {
    constexpr int kThreads = 8, kMessages = 200;
    zeltest::StreamCapture captured(stderr);
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([t] {
            for (int i = 0; i < kMessages; ++i) ZEL_LOG_ERROR_AT("file.cpp", i, "thread %d says %d", t, i);
        });
    for (std::thread& thread : threads) thread.join();
    const std::string text = captured.text();
    int whole = 0;
    std::size_t read = 0;
    for (int number = 0, thread = 0, said = 0, line = 0, length = 0; read < text.size(); ++whole) {
        const int fields = std::sscanf(&text[read], "%8d : thread %d says %d\r\nfile.cpp(%d)\r\n%n", &number,
                                       &thread, &said, &line, &length);
        ASSERT_EQ(fields, 4) << text.substr(read, 80);
        ASSERT_EQ(said, line) << "the tail of another message";
        read += static_cast<std::size_t>(length);
    }
    EXPECT_EQ(whole, kThreads * kMessages);
}

}  // namespace
