#include "run/logCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>

#include "hostSupport.h"
#include "run/jobs.h"
#include "run/logReader.h"
#include "support/streamCapture.h"

namespace {

using namespace zeltest;
using testing::HasSubstr;
using testing::Not;
using zel::LogLine;

TEST(LogReader, TellsFormsApartHoweverTheBytesArrive) {
    const std::string stream =
        "00001234 : loading\r\n"
        "00001235 : param error.\r\nsome/file.cpp(12)\r\n"
        "driver: (7) something\n"
        "00001236 : Left Eye Detect failed \n\r\nbeautykernel/eyebright/eyebright.cpp(24)\r\n"
        "[ERROR  ] no shader\n[DEBUG  ] compiled\n"
        "00001236 : last\r\n";
    for (const std::size_t piece : {std::size_t{1}, std::size_t{7}, stream.size()}) {
        std::vector<LogLine> lines;
        zel::LogReader reader([&](const LogLine& line) { lines.push_back(line); });
        for (std::size_t at = 0; at < stream.size(); at += piece)
            reader.feed(stream.data() + at, std::min(piece, stream.size() - at));
        reader.flush();
        ASSERT_EQ(lines.size(), 7u) << piece;
        EXPECT_EQ(lines[0].kind, LogLine::Kind::remark);
        EXPECT_EQ(lines[1].kind, LogLine::Kind::error);
        EXPECT_EQ(lines[1].text, "param error.");
        EXPECT_EQ(lines[1].source, "some/file.cpp(12)");
        EXPECT_EQ(lines[2].kind, LogLine::Kind::foreign);
        EXPECT_EQ(lines[3].text, "Left Eye Detect failed");
        EXPECT_EQ(lines[3].source, "beautykernel/eyebright/eyebright.cpp(24)");
        EXPECT_EQ(lines[4].text, "no shader");
        EXPECT_EQ(lines[5].kind, LogLine::Kind::remark);
        EXPECT_EQ(lines[6].text, "00001236 : last");
    }
}

TEST(LogCapture, LosesNothingFromManyThreadsAndRestoresTheStreams) {
    constexpr int kThreads = 4, kLines = 400;
    StreamCapture output(stdout), errors(stderr);
    {
        zel::Messages messages(false, zel::Messages::Style::lines);
        {
            zel::LogCapture capture(messages, false);
            zel::runJobs(kThreads, kThreads, [&](std::size_t job) {
                for (int i = 0; i < kLines; ++i) {
                    flockfile(stderr);
                    std::fprintf(stderr, "%08d : ", i);
                    std::fprintf(stderr, "fault %zu.%d", job, i);
                    std::fprintf(stderr, "\r\nfile.cpp(1)\r\n");
                    funlockfile(stderr);
                    std::fprintf(stderr, "%08d : remark\r\n", i);
                    if (i % 50 == 0) capture.sync();
                }
            });
            std::printf("color=1,2,3");  // a diagnostic without an end of line
        }
        std::printf("result\n");
        std::fprintf(stderr, "after\n");
    }
    const std::string err = errors.text();
    for (int job = 0; job < kThreads; ++job)
        for (int i = 0; i < kLines; ++i)
            ASSERT_THAT(err, HasSubstr("zel: library: fault " + std::to_string(job) + "." +
                                       std::to_string(i) + "\n"));
    EXPECT_THAT(err, Not(HasSubstr("remark")));
    EXPECT_THAT(err, testing::EndsWith("after\n"));
    EXPECT_EQ(output.text(), "result\n");
}

TEST(LogCapture, NamesTheOneInputAtWorkAndShowsAllWhenAsked) {
    StreamCapture errors(stderr);
    for (const bool verbose : {false, true}) {
        zel::Messages messages(false, zel::Messages::Style::lines);
        zel::LogCapture capture(messages, verbose);
        capture.enter("a.png");
        std::fprintf(stderr, "00000001 : bad\r\nx.cpp(1)\r\n00000002 : loaded\r\nforeign\n");
        std::fprintf(stderr, "00000003 : unreadable\r\nstb_image_util/x.cpp(1)\r\n");
        capture.leave("a.png");
        messages.error("a.png", "host\nline\033[2J");
    }
    EXPECT_EQ(errors.text(),
              "zel: a.png: library: bad\nforeign\nzel: a.png: host?line?[2J\n"
              "zel: a.png: library: bad [x.cpp(1)]\n00000002 : loaded\nforeign\n"
              "zel: a.png: library: unreadable [stb_image_util/x.cpp(1)]\nzel: a.png: host?line?[2J\n");
}

TEST(Messages, DrawABarOnATerminalAndLinesElsewhere) {
    StreamCapture errors(stderr);
    for (const auto style : {zel::Messages::Style::lines, zel::Messages::Style::terminal}) {
        zel::Messages messages(false, style);
        messages.startProgress(2);
        messages.progress(0, "reading", 0.5);
        messages.finished(0, "a\n -> b", false);
        messages.error("c", "broken");
        messages.finished(1, "c -> d", true);
    }
    const std::string text = errors.text();
    EXPECT_EQ(text.rfind("[1/2] a? -> b\nzel: c: broken\n\r\033[K[", 0), 0u) << text;
    EXPECT_THAT(text, HasSubstr("[###############...............] 1/2  reading"));
    // The error stands on a line of its own, and the bar is gone at the end.
    EXPECT_THAT(text, HasSubstr("\r\033[Kzel: c: broken\n"));
    EXPECT_THAT(text, testing::EndsWith("2/2  reading\r\033[K"));
}

}  // namespace
