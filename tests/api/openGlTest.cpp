// The library must load where no OpenGL is installed, so nothing of it may come with the library.
#include <gtest/gtest.h>
#include <link.h>

#include <string>

#include "zel_effects.h"

namespace {

TEST(OpenGl, IsNotLoadedWithTheLibrary) {
    DefocusCore::ZelDepthDefocusRender render;  // keeps the library from being left out of the link
    std::string loaded;
    dl_iterate_phdr(
        [](dl_phdr_info* info, std::size_t, void* names) {
            *static_cast<std::string*>(names) += std::string(info->dlpi_name) + '\n';
            return 0;
        },
        &loaded);
    EXPECT_NE(loaded.find("libzel_effects"), std::string::npos);
    for (const char* name : {"/libEGL", "/libGL.", "/libGLX", "/libGLEW", "/libOpenGL", "/libGLdispatch"})
        EXPECT_EQ(loaded.find(name), std::string::npos) << name;
}

}  // namespace
