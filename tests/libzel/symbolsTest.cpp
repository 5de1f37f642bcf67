// What the files show to a linker: the library the functions of its header and nothing else, the command nothing of
// the engine behind it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <string_view>

namespace {

using Names = std::set<std::string>;

/// Names that nm lists: nm ARGUMENTS. Version marks (A) are no names, and a name's own version is left out.
Names listed(const std::string& arguments) {
    const std::string command = ZEL_NM " " + arguments;
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string text;
    std::array<char, 4096> part;
    while (pipe && std::fgets(part.data(), static_cast<int>(part.size()), pipe.get())) text += part.data();
    // "0000000000001234 T name@@VERSION", "                 U name"
    constexpr std::size_t kKind = 17, kName = 19;
    std::istringstream lines(text);
    Names names;
    for (std::string line; std::getline(lines, line);)
        if (line.size() > kName && line[kKind - 1] == ' ' && line[kKind + 1] == ' ' && line[kKind] != 'A')
            names.insert(line.substr(kName, line.find('@') - kName));
    return names;
}

bool isPartOfAName(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_';
}

/// "ZEL_API zel_status zel_apply(...": the word before the first bracket of each line that begins so.
Names functionsOfTheHeader() {
    std::ifstream file(ZEL_HEADER);
    Names names;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind("ZEL_API ", 0) != 0) continue;
        const std::size_t end = line.find('(');
        std::size_t begin = end;
        while (begin > 0 && isPartOfAName(line[begin - 1])) --begin;
        names.insert(line.substr(begin, end - begin));
    }
    return names;
}

TEST(Symbols, TheLibraryExportsTheFunctionsOfItsHeaderAndNothingElse) {
    const Names declared = functionsOfTheHeader();
    EXPECT_THAT(declared, testing::Contains("zel_portrait_destroy")) << "the header's last";
    EXPECT_EQ(listed("-D --defined-only " ZEL_INTERFACE_FILE), declared);
}

#ifdef ZEL_COMMAND_FILE

/// Whether a demangled name belongs to what stands behind the interface. Files, signals and the search for the
/// nearest word, which know no pixel, are compiled into the command as well.
bool isOfTheEngine(const std::string& name) {
    constexpr std::string_view kEngine[] = {
        "ZelImageCore::", "DefocusCore::", "CFaceSlimRender::", "CEyeZoomRender::", "zelbeauty::", "zellab::",
        "zel::",          "cv::"};
    constexpr std::string_view kShared[] = {"zellab::platform::", "zellab::nearestWord(",
                                            "zellab::(anonymous namespace)::editDistance("};
    for (const std::string_view scope : kEngine)
        for (std::size_t at = name.find(scope); at != std::string::npos; at = name.find(scope, at + 1)) {
            if (at > 0 && (isPartOfAName(name[at - 1]) || name[at - 1] == ':')) continue;
            const auto begins = [&](std::string_view word) {
                return name.compare(at, word.size(), word) == 0;
            };
            if (std::none_of(std::begin(kShared), std::end(kShared), begins)) return true;
        }
    return false;
}

TEST(Symbols, TheCommandReachesPixelsThroughTheHeaderAlone) {
    for (const char* file : {ZEL_COMMAND_FILE, ZEL_COMMAND_ARCHIVE}) {
        const Names names = listed(std::string("-C ") + file);
        EXPECT_GT(names.size(), 100u) << file << " could not be read";
        for (const std::string& name : names) EXPECT_FALSE(isOfTheEngine(name)) << file << ": " << name;
    }
    const Names declared = functionsOfTheHeader();
    std::size_t used = 0;
    for (const std::string& name : listed("-D --undefined-only " ZEL_COMMAND_FILE)) {
        if (name.rfind("zel", 0) != 0) continue;
        EXPECT_TRUE(declared.contains(name)) << name;
        ++used;
    }
    EXPECT_GT(used, 20u);
}

#endif

}  // namespace
