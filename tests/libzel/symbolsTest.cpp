// What the files show to a linker: the library the functions of its header and nothing else, the command nothing of
// the engine behind it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <memory>
#include <regex>
#include <set>
#include <sstream>
#include <string>

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

Names functionsOfTheHeader() {
    std::ifstream file(ZEL_HEADER);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    static const std::regex declaration(R"(\nZEL_API [^;(]*?\b(\w+)\()");
    Names names;
    for (std::sregex_iterator found(text.begin(), text.end(), declaration), end; found != end; ++found)
        names.insert((*found)[1]);
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
    static const std::regex shared(
        R"(zellab::(platform::|nearestWord\(|\(anonymous namespace\)::editDistance\())");
    static const std::regex engine(
        R"((^|[^\w:])(ZelImageCore|DefocusCore|CFaceSlimRender|CEyeZoomRender|zelbeauty|zellab|zel|cv)::)");
    return std::regex_search(std::regex_replace(name, shared, ""), engine);
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
