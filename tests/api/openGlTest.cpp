// The library must load where no OpenGL is installed, so it may not ask the loader for any.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>
#include <string>

namespace {

/// The libraries that the product names as needed.
std::string neededLibraries() {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> pipe(
        popen(ZEL_READELF " -d " ZEL_LIBRARY_FILE " | grep NEEDED", "r"), pclose);
    std::string text;
    std::array<char, 256> part;
    while (pipe && std::fgets(part.data(), part.size(), pipe.get())) text += part.data();
    return text;
}

TEST(OpenGl, IsNotNeededToLoadTheLibrary) {
    const std::string needed = neededLibraries();
    EXPECT_NE(needed.find("libc.so"), std::string::npos) << "the list could not be read";
    for (const char* name : {"[libEGL", "[libGL", "[libOpenGL"})
        EXPECT_EQ(needed.find(name), std::string::npos) << needed;
}

}  // namespace
