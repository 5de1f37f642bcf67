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
    zelcli::Image image{width, height, patternRgba(width, height, seed), {}, {}};
    for (std::size_t i = 3; opaque && i < image.rgba.size(); i += 4) image.rgba[i] = 255;
    return image;
}

/// A small EXIF block, big-endian: orientation, a link to the Exif directory with the picture's size, a
/// maker's note, and a thumbnail directory behind it.
inline Bytes exifBlock(unsigned char orientation) {
    return {'M',  'M',  0,    42,   0, 0, 0, 8,                                 // head, first directory at 8
            0,    2,                                                            // two entries
            0x01, 0x12, 0,    3,    0, 0, 0, 1, 0,    orientation, 0,    0,     // orientation, SHORT
            0x87, 0x69, 0,    4,    0, 0, 0, 1, 0,    0,           0,    38,    // Exif directory at 38, LONG
            0,    0,    0,    80,                                               // thumbnail directory at 80
            0,    3,                                                            // three entries
            0xA0, 0x02, 0,    4,    0, 0, 0, 1, 0,    0,           0x12, 0x34,  // width, LONG
            0xA0, 0x03, 0,    3,    0, 0, 0, 1, 0x56, 0x78,        0,    0,     // height, SHORT
            0x92, 0x7C, 0,    7,    0, 0, 0, 4, 'n',  'o',         't',  'e',   // maker's note
            0,    0,    0,    0,                                                // no next directory
            0,    1,    0x01, 0x12, 0, 3, 0, 0, 0,    1,           0,    orientation, 0, 0, 0, 0, 0, 0};
}

/// A colour profile as far as anybody looks who only carries it: length, version, class, colour space
/// ("RGB ", "CMYK", ...) and signature.
inline Bytes colourProfile(const std::string& space, std::size_t size = 3000) {
    Bytes profile = randomBytes(size, 99);
    std::fill(profile.begin(), profile.begin() + 132, static_cast<unsigned char>(0));
    for (std::size_t i = 0; i < 4; ++i) profile[i] = static_cast<unsigned char>(size >> (24 - 8 * i));
    profile[8] = 2;
    const auto put = [&](std::size_t at, const std::string& text) {
        std::copy(text.begin(), text.end(), profile.begin() + static_cast<std::ptrdiff_t>(at));
    };
    put(12, "mntr");
    put(16, space);
    put(20, "XYZ ");
    put(36, "acsp");
    const unsigned char illuminant[12] = {0, 0, 0xF6, 0xD6, 0, 1, 0, 0, 0, 0, 0xD3, 0x2D};
    std::copy(std::begin(illuminant), std::end(illuminant), profile.begin() + 68);
    return profile;
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
