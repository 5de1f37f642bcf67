// Reading and writing of picture files, with what they carry and with what can be wrong about them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <functional>

#include <lcms2.h>

#include "cli/files/pngWriter.h"
#include "cli/files/readPicture.h"
#include "cli/files/writePicture.h"
#include "hostSupport.h"
#include "platform/outputSignals.h"

namespace {
/// What takes the place of fsync, where a test has something to say.
std::function<int(int fd)> g_fsync;
}  // namespace

extern "C" int fsync(int fd) {
    return g_fsync ? g_fsync(fd) : static_cast<int>(syscall(SYS_fsync, fd));
}

namespace {

using namespace zeltest;
using testing::HasSubstr;

/// A profile of a wide colour space: primaries of a phone's screen.
Bytes wideProfile() {
    const cmsCIExyY white{0.3127, 0.329, 1};
    const cmsCIExyYTRIPLE primaries{{0.68, 0.32, 1}, {0.265, 0.69, 1}, {0.15, 0.06, 1}};
    cmsToneCurve* const curve = cmsBuildGamma(nullptr, 2.2);
    cmsToneCurve* const curves[3] = {curve, curve, curve};
    cmsHPROFILE profile = cmsCreateRGBProfile(&white, &primaries, curves);
    cmsUInt32Number size = 0;
    cmsSaveProfileToMem(profile, nullptr, &size);
    Bytes bytes(size);
    cmsSaveProfileToMem(profile, bytes.data(), &size);
    cmsCloseProfile(profile);
    cmsFreeToneCurve(curve);
    return bytes;
}

std::string failureOf(const std::string& path) {
    return faultOf([&] { zelcli::readPicture(std::filesystem::path(path)); });
}

TEST(PngFile, KeepsEveryPixelAndDropsOnlyAnOpaqueAlpha) {
    const TemporaryFolder folder;
    for (const bool opaque : {true, false}) {
        const zelcli::Image image = testImage(37, 21, 2, opaque);
        zelcli::writePicture(folder / "p.png", image);
        EXPECT_EQ(readBytes(folder / "p.png")[25], opaque ? 2 : 6);  // colour type in IHDR
        EXPECT_EQ(zelcli::readPicture(folder / "p.png").image.rgba, image.rgba);
    }
    const std::vector<std::uint16_t> depth = {0, 65535, 0x1234, 0x8001};
    writeBytes(folder / "d.png", zelcli::encodeGray16Png(2, 2, depth));
    const auto read = zelcli::readPicture(folder / "d.png");
    EXPECT_EQ(read.image.rgba[8], 0x12);
    ASSERT_EQ(read.notes.size(), 1u);
    EXPECT_THAT(read.notes[0], HasSubstr("16 bits"));
    // Grey stays grey, until it is not.
    zelcli::Image grey = read.image;
    EXPECT_EQ((zelcli::writePicture(folder / "g.png", grey), readBytes(folder / "g.png")[25]), 0);
    grey.rgba[0] ^= 1;
    EXPECT_EQ((zelcli::writePicture(folder / "g.png", grey), readBytes(folder / "g.png")[25]), 2);
}

TEST(PictureFiles, LossyFormatsAreCloseAndJpegIsWhiteWhereThePictureWasClear) {
    const TemporaryFolder folder;
    zelcli::Image image = testImage(64, 48, 3);
    for (std::size_t i = 0; i < image.rgba.size(); i += 4) {
        // Hard red and blue columns show chroma subsampling at once.
        image.rgba[i] = i / 4 % 2 ? 255 : 0;
        image.rgba[i + 1] = 0;
        image.rgba[i + 2] = i / 4 % 2 ? 0 : 255;
    }
    for (std::size_t i = 64 * 4 * 24; i < image.rgba.size(); i += 4) image.rgba[i + 3] = 0;
    zelcli::writePicture(folder / "p.jpg", image);
    const zelcli::Image read = zelcli::readPicture(folder / "p.jpg").image;
    for (std::size_t i = 0; i < read.rgba.size(); i += 4)
        for (std::size_t c = 0; c < 3; ++c)
            ASSERT_NEAR(read.rgba[i + c], i < 64 * 4 * 24 ? image.rgba[i + c] : 255, 16) << i;
    // Quality and subsampling of a JPEG file go on to what is made of it.
    std::vector<std::string> notes;
    for (const auto subsampling : {zelcli::Subsampling::none, zelcli::Subsampling::quarter}) {
        writeBytes(folder / "q.jpg",
                   zelcli::encodePicture(image, zelcli::PictureFormat::jpeg,
                                         {.quality = 71, .subsampling = subsampling}, notes));
        zelcli::writePicture(folder / "again.jpg", zelcli::readPicture(folder / "q.jpg").image);
        const auto traits = zelcli::readPicture(folder / "again.jpg").image.origin->traits;
        EXPECT_EQ(traits.jpegQuality, 71);
        EXPECT_EQ(traits.subsampling, subsampling);
    }
}

/// Runs a line of the shell in the folder and gives what it prints.
std::string shell(const TemporaryFolder& folder, const std::string& line) {
    const std::string command = "cd '" + folder.path().string() + "' && (" + line + ") > .shell 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0) << readText(folder / ".shell");
    return readText(folder / ".shell");
}

bool haveExiftool() {
    return std::system("exiftool -ver > /dev/null 2>&1") == 0;
}

constexpr const char* kFormats[] = {"jpg", "png", "tif", "webp", "avif"};

/// What exiftool is asked for, and the formats that have no place for it.
struct Carried {
    const char *tag, *value, *without;
};
constexpr Carried kCarried[] = {{"IFD0:Artist", "me", ""},
                                {"ExifIFD:ExposureTime", "1/100", ""},
                                {"ExifIFD:LensModel", "a lens", ""},
                                {"GPS:GPSLatitude", "12 deg 30' 0.00\"", ""},
                                {"IFD0:XResolution", "300", ""},
                                {"IFD0:Orientation", "Horizontal (normal)", ""},
                                {"XMP-dc:Title", "Grüße", ""},
                                {"XMP-xmp:Rating", "4", ""},
                                {"IPTC:Keywords", "portrait", "webp avif"},
                                {"Comment", "a cömment", "tif webp avif"},
                                {"ICC_Profile:ProfileDescription", "RGB built-in", ""}};

/// A JPEG file that carries all of it, stored on its side, with a thumbnail of the old picture.
void makeLadenJpeg(const TemporaryFolder& folder) {
    zelcli::writePicture(folder / "plain.jpg", testImage(64, 40, 3));
    zelcli::writePicture(folder / "thumbnail.jpg", testImage(16, 10, 3));
    writeBytes(folder / "p.icc", wideProfile());
    shell(
        folder,
        "exiftool -q -o in.jpg -Orientation#=6 -EXIF:Artist=me -ExposureTime=1/100 -LensModel='a lens' "
        "-EXIF:GPSLatitude=12.5 -EXIF:GPSLatitudeRef=N -XMP:GPSLatitude=12.5 -XResolution=300 "
        "-YResolution=300 "
        "-ResolutionUnit=inches "
        "-JFIF:XResolution=300 -JFIF:YResolution=300 -JFIF:ResolutionUnit=inches -XMP:Title=Grüße "
        "-XMP:Rating=4 "
        "-IPTC:Keywords=portrait -Comment='a cömment' '-ThumbnailImage<=thumbnail.jpg' '-ICC_Profile<=p.icc' "
        "plain.jpg");
}

TEST(Metadata, SurvivesEveryRoadBetweenFormatsThatCanCarryIt) {
    if (!haveExiftool()) GTEST_SKIP() << "no exiftool, which is the judge";
    const TemporaryFolder folder;
    makeLadenJpeg(folder);
    const zelcli::Image laden = zelcli::readPicture(folder / "in.jpg").image;
    EXPECT_EQ(laden.width, 40) << "turned upright";
    std::string tags = "exiftool -a -s -S -m -q -p '";
    for (const Carried& carried : kCarried) tags.append("${").append(carried.tag).append("}|");
    tags += "$FileName' ";
    for (const std::string from : kFormats) {
        zelcli::writePicture(folder / ("first." + from), laden);
        const zelcli::Image middle = zelcli::readPicture(folder / ("first." + from)).image;
        for (const std::string to : kFormats) {
            const std::string name = from + "-to." + to;
            zelcli::writePicture(folder / name, middle);
            std::string expected;
            for (const Carried& carried : kCarried) {
                const std::string without = carried.without;
                const bool lost = without.find(from) != without.npos || without.find(to) != without.npos;
                expected.append(lost ? "" : carried.value).append("|");
            }
            EXPECT_EQ(shell(folder, tags + name), expected + name + "\n");
        }
    }
    // Nothing twice, nothing of the old picture, nothing that exiftool finds fault with.
    const std::string all =
        shell(folder, "exiftool -a -s -G1 -Artist -ThumbnailImage -Warning -Error *-to.*");
    EXPECT_EQ(std::count(all.begin(), all.end(), '\n'), 25 * 2 + 1) << all;
}

TEST(Metadata, GoesWhereTheUserWantsItGoneAndIsToldWhereItCannotGo) {
    if (!haveExiftool()) GTEST_SKIP() << "no exiftool, which is the judge";
    const TemporaryFolder folder;
    makeLadenJpeg(folder);
    const zelcli::Image laden = zelcli::readPicture(folder / "in.jpg").image;
    std::vector<std::string> notes;
    const auto write = [&](const char* name, const zelcli::SaveOptions& options) {
        const auto format = zelcli::formatOfSuffix(name);
        writeBytes(folder / name, zelcli::encodePicture(laden, *format, options, notes));
    };
    for (const char* name : {"strip.jpg", "strip.png", "strip.tif", "strip.webp", "strip.avif"})
        write(name, {.strip = true});
    for (const char* name : {"place.jpg", "place.png", "place.avif"}) write(name, {.noGps = true});
    EXPECT_THAT(notes, testing::ElementsAre("AVIF cannot carry IPTC captions, the comment"));
    EXPECT_EQ(
        shell(folder,
              "exiftool -q -q -if '$Artist or $Title or $Keywords or $Comment' -FileName strip.* || true"),
        "");
    EXPECT_EQ(shell(folder, "exiftool -q -q -if '$GPSLatitude or $GPSVersionID' -FileName place.* || true"),
              "");
    const std::string artists = shell(folder, "exiftool -q -p '$Artist' place.*");
    EXPECT_EQ(artists, "me\nme\nme\n");
}

TEST(ReadPicture, ShowsWideColoursInSrgbAndGivesThemBackUnharmed) {
    const TemporaryFolder folder;
    if (!haveExiftool()) GTEST_SKIP() << "no exiftool, which puts the profile in";
    writeBytes(folder / "p.icc", wideProfile());
    const zelcli::Image colours = testImage(40, 30, 7);
    zelcli::writePicture(folder / "p.png", colours);
    shell(folder, "exiftool -q -overwrite_original '-ICC_Profile<=p.icc' p.png");
    zelcli::Image image = zelcli::readPicture(folder / "p.png").image;
    const zelcli::Image seen = image;
    EXPECT_NE(seen.rgba, colours.rgba);
    for (std::size_t i = 0; i < image.rgba.size() / 2; ++i)
        if (i % 4 != 3) image.rgba[i] = 128;
    zelcli::writePicture(folder / "q.png", image);
    const zelcli::Image again = zelcli::readPicture(folder / "q.png").image;
    for (std::size_t i = 0; i < image.rgba.size() / 2; ++i)
        if (i % 4 != 3) {
            ASSERT_NEAR(again.rgba[i], 128, 3);
        }
    EXPECT_TRUE(std::equal(again.rgba.begin() + static_cast<std::ptrdiff_t>(again.rgba.size() / 2),
                           again.rgba.end(),
                           seen.rgba.begin() + static_cast<std::ptrdiff_t>(seen.rgba.size() / 2)));
}

TEST(ReadPicture, RefusesAbsurdSizesBeforeItDecodes) {
    const TemporaryFolder folder;
    // A whole JPEG whose frame head claims 65,500 by 65,500 pixels.
    zelcli::writePicture(folder / "huge.jpg", testImage(16, 16, 5));
    Bytes jpeg = readBytes(folder / "huge.jpg");
    for (std::size_t i = 0; i + 9 < jpeg.size(); ++i)
        if (jpeg[i] == 0xFF && jpeg[i + 1] == 0xC0) {
            for (const std::size_t at : {5u, 7u}) jpeg[i + at] = 0xFF, jpeg[i + at + 1] = 0xDC;
            break;
        }
    writeBytes(folder / "huge.jpg", jpeg);
    EXPECT_THAT(failureOf(folder / "huge.jpg"), HasSubstr("65500 by 65500"));
    const std::string digits = "P6 " + std::string(30, '1') + " 5 255\n";  // no number is as long
    writeBytes(folder / "huge.ppm", Bytes(digits.begin(), digits.end()));
    EXPECT_NE(failureOf(folder / "huge.ppm"), "accepted");
    zelcli::writePicture(folder / "p.bmp.png", testImage(30, 20, 5));
    EXPECT_THAT(faultOf([&] { zelcli::readPicture(folder / "p.bmp.png", {.mostPixels = 599}); }),
                HasSubstr("--max-megapixels"));
    EXPECT_EQ(zelcli::readPicture(folder / "p.bmp.png", {.mostPixels = 600}).image.width, 30);
}

TEST(ReadPicture, RefusesWhatIsNotAWholePicture) {
    const TemporaryFolder folder;
    const zelcli::Image image = testImage(60, 50, 4);
    for (const char* name : {"p.png", "p.jpg", "p.tif", "p.webp", "p.avif"}) {
        zelcli::writePicture(folder / name, image);
        const Bytes whole = readBytes(folder / name);
        for (const std::size_t keep : {whole.size() / 2, std::size_t{40}, std::size_t{9}}) {
            writeBytes(folder / "cut",
                       Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(keep)));
            EXPECT_NE(failureOf(folder / "cut"), "accepted") << name << " cut to " << keep;
        }
    }
    for (const char* name : {"p.png", "p.jpg"}) {
        Bytes whole = readBytes(folder / name);
        whole.resize(whole.size() * 2 / 3);
        writeBytes(folder / "cut", whole);
        EXPECT_THAT(failureOf(folder / "cut"), HasSubstr("ends early")) << name;
    }
    Bytes damaged = readBytes(folder / "p.png");
    damaged[damaged.size() / 2] ^= 1;
    writeBytes(folder / "damaged.png", damaged);
    EXPECT_THAT(failureOf(folder / "damaged.png"), HasSubstr("damaged"));
    writeBytes(folder / "empty.png", {});
    EXPECT_EQ(failureOf(folder / "empty.png"), "is empty");
    std::filesystem::resize_file(folder / "empty.png", std::uintmax_t{1} << 40);  // sparse
    EXPECT_THAT(failureOf(folder / "empty.png"), HasSubstr("two gigabytes"));
    writeBytes(folder / "text.png", {'h', 'e', 'l', 'l', 'o'});
    EXPECT_THAT(failureOf(folder / "text.png"), HasSubstr("not a picture"));
    EXPECT_THAT(failureOf(folder.path().string()), HasSubstr("folder"));
    EXPECT_THAT(failureOf(folder / "missing.png"), HasSubstr("No such file"));
    ASSERT_EQ(mkfifo((folder / "pipe.png").c_str(), 0600), 0);
    EXPECT_THAT(failureOf(folder / "pipe.png"), HasSubstr("not a regular file"));
}

TEST(ReadMask, TakesGreyWeighedByAlpha) {
    const TemporaryFolder folder;
    const zelcli::Image image{3, 1, {255, 255, 255, 255, 255, 255, 255, 0, 100, 100, 100, 255}};
    zelcli::writePicture(folder / "m.png", image);
    EXPECT_EQ(zelcli::readMask(folder / "m.png").samples, (Bytes{255, 0, 100}));
}

std::ptrdiff_t filesIn(const TemporaryFolder& folder) {
    return std::distance(std::filesystem::directory_iterator(folder.path()), {});
}

mode_t modeOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 07777;
}

const Bytes kBefore = {1, 2, 3}, kAfter = {4, 5};

TEST(SafeOutput, ReplacesAsAWholeAndKeepsLinksAndPermissions) {
    const TemporaryFolder folder;
    writeBytes(folder / "real", kBefore);
    std::filesystem::create_symlink("real", folder / "link");
    for (const mode_t mode : {0640, 06755}) {
        chmod((folder / "real").c_str(), mode);
        zelcli::writeFileSafely(folder / "link", kAfter);
        EXPECT_EQ(readBytes(folder / "real"), kAfter);
        EXPECT_TRUE(std::filesystem::is_symlink(folder / "link"));
        EXPECT_EQ(modeOf(folder / "real"), mode & 0777) << "no set-user-id";
    }
    EXPECT_THROW(zelcli::writeFileSafely("/dev/null", kAfter), zelcli::Failure);
    EXPECT_THROW(zelcli::writeFileSafely(folder.path(), kAfter), zelcli::Failure);
    EXPECT_THROW(zelcli::writeFileSafely(folder / "none/x", kAfter), zelcli::Failure);
    EXPECT_THROW(zelcli::writePicture(folder / "x.bmp", testImage(2, 2, 1)), zelcli::Failure);
    EXPECT_EQ(filesIn(folder), 2) << "a temporary file stayed behind";
}

// Here at a limit, elsewhere on a full disk.
TEST(SafeOutput, AWriteThatBreaksOffLeavesTheOldFile) {
    const TemporaryFolder folder;
    writeBytes(folder / "p.png", kBefore);
    const std::string command = "cd '" + folder.path().string() +
                                "' && (ulimit -f 8; '" ZEL_PROGRAM
                                "' portrait -o p.png --size 300x400 2> .err < /dev/null)";
    const int status = std::system(command.c_str());
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 1) << status;
    EXPECT_THAT(readText(folder / ".err"), HasSubstr("zel: p.png: cannot be written (File too large)"));
    EXPECT_EQ(readBytes(folder / "p.png"), kBefore);
    EXPECT_EQ(filesIn(folder), 2) << "a temporary file stayed behind";
}

TEST(SafeOutput, IsOnTheDiskBeforeItTakesItsName) {
    const TemporaryFolder folder;
    writeBytes(folder / "file", kBefore);
    for (const int error : {0, EINVAL, EIO}) {
        int calls = 0;
        g_fsync = [&](int fd) {
            struct stat status {};
            EXPECT_EQ(fstat(fd, &status), 0);
            EXPECT_EQ(static_cast<std::size_t>(status.st_size), kAfter.size());
            EXPECT_EQ(readBytes(folder / "file"), kBefore);
            ++calls;
            errno = error;
            return error == 0 ? 0 : -1;
        };
        if (error == EIO) {
            EXPECT_THROW(zelcli::writeFileSafely(folder / "file", kAfter), zelcli::Failure);
        } else {
            zelcli::writeFileSafely(folder / "file", kAfter);
        }
        g_fsync = nullptr;
        EXPECT_EQ(calls, 1);
        EXPECT_EQ(readBytes(folder / "file"), error == EIO ? kBefore : kAfter);
        EXPECT_EQ(filesIn(folder), 1);
        writeBytes(folder / "file", kBefore);
    }
}

/// Writes a file, and has a signal while it does.
void writeUnderSignal(const std::string& path, int signal) {
    zellab::platform::removeUnfinishedFilesOnSignals();
    g_fsync = [signal](int) { return raise(signal); };
    zelcli::writeFileSafely(path, kAfter);
}

TEST(SafeOutput, ASignalLeavesTheOldFileAlone) {
    const TemporaryFolder folder;
    writeBytes(folder / "file", kBefore);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        EXPECT_EXIT(writeUnderSignal(folder / "file", signal), testing::KilledBySignal(signal), "");
        EXPECT_EQ(readBytes(folder / "file"), kBefore);
        EXPECT_EQ(filesIn(folder), 1) << "a temporary file stayed behind";
    }
    const auto ignoring = [&] {
        std::signal(SIGINT, SIG_IGN);  // as a shell starts what goes on behind it
        writeUnderSignal(folder / "file", SIGINT);
        std::_Exit(0);
    };
    EXPECT_EXIT(ignoring(), testing::ExitedWithCode(0), "");
    EXPECT_EQ(readBytes(folder / "file"), kAfter);
}

}  // namespace
