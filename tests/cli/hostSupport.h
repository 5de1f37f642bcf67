#pragma once

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "cli/failure.h"
#include "cli/files/image.h"
#include "support/faultOf.h"
#include "support/scratchFolder.h"

namespace zeltest {

using TemporaryFolder = ScratchFolder;

inline std::string readText(const std::string& path) {
    const Bytes bytes = readBytes(path);
    return {bytes.begin(), bytes.end()};
}

/// A picture with shapes and edges; opaque unless asked.
inline zelcli::Image testImage(int width, int height, unsigned seed, bool opaque = true) {
    zelcli::Image image{width, height, patternRgba(width, height, seed)};
    for (std::size_t i = 3; opaque && i < image.rgba.size(); i += 4) image.rgba[i] = 255;
    return image;
}

/// What one run of the built program left behind.
struct ProgramRun {
    int status = -1;
    std::string out, err;
};

/// Runs the program with words for the shell behind it, in `folder`.
inline ProgramRun runZel(const TemporaryFolder& folder, const std::string& words) {
    const std::string command =
        "cd '" + folder.path().string() + "' && '" ZEL_PROGRAM "' " + words + " > .out 2> .err < /dev/null";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readText(folder / ".out"),
            readText(folder / ".err")};
}

/// Passes a run through that must have ended well; what it said shows where it did not.
inline ProgramRun expectOk(const ProgramRun& run) {
    EXPECT_EQ(run.status, 0) << run.err;
    return run;
}

/// Words that the program must refuse, and what it says then.
struct Refusal {
    const char *words, *says;
    int status = 2;
};

/// Each run must end with one line that says why, and without the file `output`.
inline void expectRefusals(const TemporaryFolder& folder, const std::string& begin, const std::string& output,
                           std::initializer_list<Refusal> refusals) {
    for (const Refusal& refusal : refusals) {
        SCOPED_TRACE(refusal.words);
        const ProgramRun run = runZel(folder, begin + refusal.words);
        EXPECT_EQ(run.status, refusal.status) << run.err;
        EXPECT_THAT(run.err, testing::HasSubstr(refusal.says));
        EXPECT_THAT(run.err, testing::StartsWith("zel: "));
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_EQ(run.out, "");
        EXPECT_FALSE(std::filesystem::exists(folder / output));
    }
}

}  // namespace zeltest
