#include "libzel/cube/cubeFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <sstream>

#include "effectSupport.h"

namespace {

using testing::HasSubstr;

zel::CubeFile read(const std::string& text) {
    std::istringstream stream(text);
    return zel::readCube(stream);
}

std::string failureOf(const std::string& text) {
    return zeltest::faultOf([&] { read(text); });
}

/// The text of a table whose colours are `change` of the position of each step, over a domain.
template <typename Change>
std::string cubeText(int size, float low, float high, const Change& change) {
    std::ostringstream text;
    text << "# made for a test\r\n\nTITLE \"a look\"\nLUT_3D_SIZE " << size << "\nDOMAIN_MIN " << low << ' '
         << low << ' ' << low << "\nDOMAIN_MAX " << high << ' ' << high << ' ' << high << "\n";
    const auto at = [&](int i) {
        return low + (high - low) * static_cast<float>(i) / static_cast<float>(size - 1);
    };
    for (int b = 0; b < size; ++b)
        for (int g = 0; g < size; ++g)
            for (int r = 0; r < size; ++r) {
                const auto colour = change(at(r), at(g), at(b));
                text << colour[0] << "  " << colour[1] << '\t' << colour[2] << "\r\n";
            }
    return text.str();
}

std::array<float, 3> identity(float r, float g, float b) {
    return {r, g, b};
}

/// The texel of a step in the library's picture.
const unsigned char* texel(const std::vector<unsigned char>& picture, int r, int g, int b) {
    return picture.data() + 4 * ((b / 4 * 16 + g) * 64 + b % 4 * 16 + r);
}

TEST(CubeFile, AnIdentityOfAnySizeAndDomainGivesTheIdentityPicture) {
    for (int size : {2, 3, 16, 17, 33})
        for (const auto& [low, high] : std::vector<std::pair<float, float>>{{0, 1}, {-0.5f, 2.0f}}) {
            const zel::CubeFile cube = read(cubeText(size, low, high, identity));
            EXPECT_EQ(cube.title, "a look");
            const auto picture = zel::cubePicture(cube);
            ASSERT_EQ(picture.size(), 64u * 64 * 4);
            for (int b = 0; b < 16; ++b)
                for (int g = 0; g < 16; ++g)
                    for (int r = 0; r < 16; ++r) {
                        const unsigned char* const t = texel(picture, r, g, b);
                        ASSERT_EQ(t[0], 17 * r) << size;
                        ASSERT_EQ(t[1], 17 * g);
                        ASSERT_EQ(t[2], 17 * b);
                        ASSERT_EQ(t[3], 255);
                    }
        }
}

// Inputs beyond the table's domain take its nearest colour.
TEST(CubeFile, InputsOutsideTheDomainStopAtItsEdge) {
    const auto picture = zel::cubePicture(read(cubeText(4, 0.2f, 0.8f, identity)));
    EXPECT_EQ(texel(picture, 0, 7, 15)[0], 51);
    EXPECT_EQ(texel(picture, 0, 7, 15)[1], 17 * 7);
    EXPECT_EQ(texel(picture, 0, 7, 15)[2], 204);
}

TEST(CubeFile, TakesTheFormsThatProgramsWrite) {
    const std::string colours = "0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n1 1 1\n";
    EXPECT_EQ(read("\xef\xbb\xbfLUT_3D_SIZE 2\n" + colours).size, 2);
    EXPECT_EQ(read("LUT_3D_SIZE 2 # steps\n" + colours + "\n\n# end").size, 2);
    EXPECT_EQ(read("LUT_3D_INPUT_RANGE 0.0 4\nLUT_3D_SIZE\t2\n" + colours).domainMax[1], 4);
    EXPECT_EQ(read("LUT_IN_VIDEO_RANGE\nTITLE no marks\nLUT_3D_SIZE 2\n" + colours).title, "no marks");
    EXPECT_FLOAT_EQ(read("LUT_3D_SIZE 2\n+1.5e-1 -.25 1E+0\n" + colours.substr(6)).samples[0], 0.15f);
}

TEST(CubeFile, SaysWhatIsWrongAndWhere) {
    const std::string seven = "0 0 0\n1 0 0\n0 1 0\n1 1 0\n0 0 1\n1 0 1\n0 1 1\n";
    const std::pair<std::string, const char*> cases[] = {
        {"", "no LUT_3D_SIZE"},
        {"TITLE x\n1 2 3\n", "line 2: a colour stands before"},
        {"LUT_1D_SIZE 16\n", "line 1: holds a 1-D"},
        {"LUT_3D_SIZE 1\n", "from 2 to 256, not '1'"},
        {"LUT_3D_SIZE 99999999999999999999\n", "from 2 to 256"},
        {"LUT_3D_SIZE\n", "''"},
        {"LUT_3D_SIZE 2 2\n", "'2' is one value too many"},
        {"LUT_3D_SIZE 2\n\nLUT_3D_SIZE 2\n", "line 3: LUT_3D_SIZE is given twice"},
        {"LUT_3D_SIZE 2\n" + seven, "ends after 7 of 8 colours"},
        {"LUT_3D_SIZE 2\n" + seven + "1 1 1\n1 1 1\n", "line 10: more colours"},
        {"LUT_3D_SIZE 2\n0 0\n", "line 2: a number is missing"},
        {"LUT_3D_SIZE 2\n0 0 0 0\n", "line 2: '0' is one value too many"},
        {"LUT_3D_SIZE 2\n0 nan 0\n", "'nan' is no number"},
        {"LUT_3D_SIZE 2\n0 1e400 0\n", "'1e400'"},
        {"LUT_3D_SIZE 2\n0 0,5 0\n", "'0,5'"},
        {"LUT_3D_SIZE 2\nDOMAIN_MIN 0 2 0\n" + seven + "1 1 1\n", "empty domain"},
        {"LUT_3D_SIZE 2\n\x01\xff" + std::string(500, 'q') + " 0 0\n", "'??qqqqqqqqqqqqqqqqqqqqqq...'"}};
    for (const auto& [text, message] : cases)
        EXPECT_THAT(failureOf(text), HasSubstr(message)) << text.substr(0, 60);
}

TEST(CubeFile, IsReadFromRegularFilesAlone) {
    const zeltest::ScratchFolder folder;
    const std::string text = cubeText(2, 0, 1, identity);
    EXPECT_EQ(zel::readCubeFile(folder.write("a.cube", {text.begin(), text.end()})).size, 2);
    ASSERT_EQ(mkfifo(folder.path("pipe.cube").c_str(), 0600), 0);
    for (const std::string& path :
         {folder.path("none.cube"), folder.path(""), folder.path("pipe.cube"), std::string("/dev/zero")})
        EXPECT_THROW(zel::readCubeFile(path), zel::Failure) << path;
}

// A damaged file either fails with a message or gives a table that can be used.
TEST(CubeFile, DamagedTextNeverBreaksIt) {
    const std::string whole = cubeText(3, 0, 1, identity);
    for (unsigned seed = 0; seed < 3000; ++seed) {
        std::string damaged = whole;
        const auto random = zeltest::randomBytes(9, seed);
        for (std::size_t k = 0; k + 2 < random.size(); k += 3)
            damaged[(random[k] * 256u + random[k + 1]) % damaged.size()] = static_cast<char>(random[k + 2]);
        if (seed % 3 == 0) damaged.resize(random[8] * 3u);
        try {
            const zel::CubeFile cube = read(damaged);
            EXPECT_EQ(cube.samples.size(), 3u * static_cast<std::size_t>(cube.size * cube.size * cube.size));
            zel::cubePicture(cube);
        } catch (const zel::Failure& failure) {
            EXPECT_STRNE(failure.what(), "");
        }
    }
}

}  // namespace
