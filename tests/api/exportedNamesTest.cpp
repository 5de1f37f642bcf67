// The library shows the members of its seven exported classes, and nothing else.
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>
#include <set>
#include <string>

namespace {

constexpr std::size_t kExportedNames = 58;

/// Demangled names of all dynamic symbols that the library defines.
std::set<std::string> exportedNames() {
    const std::string command = ZEL_NM " -D --defined-only -C " ZEL_LIBRARY_FILE;
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::set<std::string> names;
    std::array<char, 1024> line;
    while (pipe && std::fgets(line.data(), static_cast<int>(line.size()), pipe.get())) {
        const std::string text(line.data());
        // "0000000000001234 T name\n"; absolute symbols (A) are version marks, not code.
        const std::size_t kind = text.find(' ') + 1;
        if (text[kind] != 'A') names.insert(text.substr(kind + 2, text.size() - kind - 3));
    }
    return names;
}

TEST(ExportedNames, AreTheMembersOfTheExportedClassesAndNothingElse) {
    const std::set<std::string> names = exportedNames();
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

}  // namespace
