// What the built library shows to the loader: the members of its seven exported classes and nothing else, and
// no need of OpenGL or of what runs networks.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>
#include <string>

#include "zel_effects/zel_effects.h"

namespace {

constexpr std::size_t kExportedNames = 58;

std::string outputOf(const char* command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command, "r"), pclose);
    std::string text;
    std::array<char, 1024> part;
    while (pipe && std::fgets(part.data(), static_cast<int>(part.size()), pipe.get())) text += part.data();
    return text;
}

/// Demangled names of all dynamic symbols that a library defines, as a listing tells them.
std::set<std::string> exportedNames(const char* listing) {
    std::istringstream lines(outputOf(listing));
    std::set<std::string> names;
    for (std::string line; std::getline(lines, line);) {
        // "0000000000001234 T name"; absolute symbols (A) are version marks, not code.
        const std::size_t kind = line.find(' ') + 1;
        if (line[kind] != 'A') names.insert(line.substr(kind + 2));
    }
    return names;
}

TEST(LibraryFile, ExportsTheMembersOfTheExportedClassesAndNothingElse) {
    const std::set<std::string> names = exportedNames(ZEL_NM " -D --defined-only -C " ZEL_LIBRARY_FILE);
    EXPECT_EQ(names.size(), kExportedNames);
    for (const std::string& name : names) {
        bool known = false;
        for (const char* scope :
             {"ZelImageCore::TableBase::", "ZelImageCore::TableSkin::", "ZelImageCore::StbImageUtil::",
              "ZelImageCore::CScenarioBeauty::", "CFaceSlimRender::", "CEyeZoomRender::",
              "DefocusCore::ZelDepthDefocusRender::"})
            known = known || name.rfind(scope, 0) == 0;
        EXPECT_TRUE(known) << name;
    }
}

TEST(LibraryFile, TheInferenceModuleShowsItsOneName) {
    EXPECT_EQ(exportedNames(ZEL_NM " -D --defined-only -C " ZEL_MODULE_FILE),
              std::set<std::string>{"zelNetworkModule"});
}

/// Whether the library that runs networks is in this process.
bool networksAreLoaded() {
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);)
        if (line.find("libopencv_") != std::string::npos) return true;
    return false;
}

// In a process of its own, so that what other tests loaded does not count.
TEST(LibraryFileDeathTest, WhatRunsNetworksIsLoadedForTheFirstNetworkAndNotBefore) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto steps = [] {
        if (networksAreLoaded()) std::exit(1);
        unsigned char pixels[16 * 4] = {};
        ZelImageCore::TableSkin::ImageProcessWithNatureSmooth(pixels, 4, 4, 12);
        if (networksAreLoaded()) std::exit(2);
        DefocusCore::ZelDepthDefocusRender render;
        render.setResourcePath(ZEL_ASSETS "/depth", ZEL_ASSETS "/bokeh");
        std::exit(render.Init(true) && networksAreLoaded() ? 0 : 3);
    };
    EXPECT_EXIT(steps(), testing::ExitedWithCode(0), "");
}

// The library must load where no OpenGL is installed, so it may not ask the loader for any.
TEST(LibraryFile, LoadsWithoutOpenGl) {
    const std::string needed = outputOf(ZEL_READELF " -d " ZEL_LIBRARY_FILE " | grep NEEDED");
    EXPECT_NE(needed.find("libc.so"), needed.npos) << "the list could not be read";
    for (const char* name : {"[libEGL", "[libGL", "[libOpenGL"})
        EXPECT_EQ(needed.find(name), needed.npos) << needed;
}

}  // namespace
