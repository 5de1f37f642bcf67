// Reading and writing of picture files, with what they carry and with what can be wrong about them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <functional>

#include <jpeglib.h>

#include "cli/files/exifBlock.h"
#include "cli/files/jpegFile.h"
#include "cli/files/orientation.h"
#include "cli/files/pngFile.h"
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

std::string failureOf(const std::string& path) {
    return faultOf([&] { zelcli::readPicture(path, false); });
}

/// A JPEG file with four ink channels.
Bytes cmykJpeg(int width, int height) {
    jpeg_compress_struct jpeg{};
    jpeg_error_mgr errors;
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &bytes, &size);
    jpeg.image_width = static_cast<JDIMENSION>(width);
    jpeg.image_height = static_cast<JDIMENSION>(height);
    jpeg.input_components = 4;
    jpeg.in_color_space = JCS_CMYK;
    jpeg_set_defaults(&jpeg);
    jpeg_start_compress(&jpeg, TRUE);
    const Bytes profile = colourProfile("CMYK");
    jpeg_write_icc_profile(&jpeg, profile.data(), static_cast<unsigned>(profile.size()));
    Bytes line = randomBytes(static_cast<std::size_t>(width) * 4, 5);
    JSAMPROW row = line.data();
    while (jpeg.next_scanline < jpeg.image_height) jpeg_write_scanlines(&jpeg, &row, 1);
    jpeg_finish_compress(&jpeg);
    Bytes file(bytes, bytes + size);
    jpeg_destroy_compress(&jpeg);
    std::free(bytes);
    return file;
}

TEST(Orientation, TurnsAllEightUpright) {
    // Two columns, three rows, each pixel named by its red byte; the upright pictures worked out by hand.
    const int stored[] = {1, 2, 3, 4, 5, 6};
    const struct {
        int orientation, width;
        std::vector<int> upright;
    } cases[] = {{1, 2, {1, 2, 3, 4, 5, 6}}, {2, 2, {2, 1, 4, 3, 6, 5}}, {3, 2, {6, 5, 4, 3, 2, 1}},
                 {4, 2, {5, 6, 3, 4, 1, 2}}, {5, 3, {1, 3, 5, 2, 4, 6}}, {6, 3, {5, 3, 1, 6, 4, 2}},
                 {7, 3, {6, 4, 2, 5, 3, 1}}, {8, 3, {2, 4, 6, 1, 3, 5}}, {9, 2, {1, 2, 3, 4, 5, 6}}};
    for (const auto& c : cases) {
        zelcli::Image image{2, 3, {}, {}, {}};
        for (const int red : stored)
            image.rgba.insert(image.rgba.end(), {static_cast<unsigned char>(red), 0, 0, 255});
        zelcli::turnUpright(image, c.orientation);
        EXPECT_EQ(image.width, c.width) << c.orientation;
        EXPECT_EQ(image.height, 6 / c.width) << c.orientation;
        std::vector<int> reds;
        for (std::size_t i = 0; i < image.rgba.size(); i += 4) reds.push_back(image.rgba[i]);
        EXPECT_EQ(reds, c.upright) << c.orientation;
    }
}

TEST(ExifBlock, IsMadeTrueForTheUprightPictureAndKeptOtherwise) {
    Bytes block = exifBlock(6);
    EXPECT_EQ(zelcli::exifOrientation(block), 6);
    zelcli::adaptExif(block, 300, 200);
    Bytes wanted = exifBlock(1);
    for (const std::size_t at : {34u, 35u, 36u, 37u}) wanted[at] = 0;  // the thumbnail is unlinked,
    wanted[80 + 11] = 6;                                               // not rewritten
    wanted[50] = 300 >> 8, wanted[51] = 300 & 255;
    wanted[60] = 0, wanted[61] = 200;
    EXPECT_EQ(block, wanted);
}

TEST(ExifBlock, SurvivesEveryCutAndDamage) {
    const Bytes whole = exifBlock(6);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        cut.shrink_to_fit();  // so that a read behind its end shows under the sanitizer
        zelcli::adaptExif(cut, 1, 1);
        EXPECT_GE(zelcli::exifOrientation(cut), 1);
    }
    for (std::size_t at = 0; at < whole.size(); ++at)
        for (const unsigned char value : {0, 127, 255}) {
            Bytes damaged = whole;
            damaged[at] = value;
            zelcli::adaptExif(damaged, 1, 1);
            EXPECT_LE(zelcli::exifOrientation(damaged), 8);
        }
}

class CarriedThrough : public testing::TestWithParam<const char*> {};
INSTANTIATE_TEST_SUITE_P(Formats, CarriedThrough, testing::Values("p.png", "p.JPEG"));

TEST_P(CarriedThrough, ExifProfileAndOrientation) {
    const TemporaryFolder folder;
    const std::string path = folder / GetParam();
    zelcli::Image image = testImage(40, 30, 1);
    image.exif = exifBlock(8);
    image.iccProfile = colourProfile("RGB ", 150000);  // more than one JPEG marker holds
    zelcli::writePicture(path, image);
    const zelcli::LoadedPicture read = zelcli::readPicture(path, false);
    EXPECT_TRUE(read.notes.empty());
    EXPECT_EQ(read.image.width, 30);
    EXPECT_EQ(read.image.height, 40);
    EXPECT_EQ(read.image.iccProfile, image.iccProfile);
    EXPECT_EQ(zelcli::exifOrientation(read.image.exif), 1);
    EXPECT_EQ(read.image.exif.size(), image.exif.size());
}

TEST(PngFile, KeepsEveryPixelAndDropsOnlyAnOpaqueAlpha) {
    const TemporaryFolder folder;
    for (const bool opaque : {true, false}) {
        const zelcli::Image image = testImage(37, 21, 2, opaque);
        zelcli::writePicture(folder / "p.png", image);
        EXPECT_EQ(readBytes(folder / "p.png")[25], opaque ? 2 : 6);  // colour type in IHDR
        EXPECT_EQ(zelcli::readPicture(folder / "p.png", false).image.rgba, image.rgba);
    }
    const std::vector<std::uint16_t> depth = {0, 65535, 0x1234, 0x8001};
    writeBytes(folder / "d.png", zelcli::encodeGray16Png(2, 2, depth));
    const auto read = zelcli::readPicture(folder / "d.png", false);
    EXPECT_EQ(read.image.rgba[8], 0x12);
    ASSERT_EQ(read.notes.size(), 1u);
    EXPECT_THAT(read.notes[0], HasSubstr("16 bits"));
}

TEST(JpegFile, IsCloseToThePictureAndWhiteWhereItWasClear) {
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
    const zelcli::Image read = zelcli::readPicture(folder / "p.jpg", false).image;
    for (std::size_t i = 0; i < read.rgba.size(); i += 4)
        for (std::size_t c = 0; c < 3; ++c)
            ASSERT_NEAR(read.rgba[i + c], i < 64 * 4 * 24 ? image.rgba[i + c] : 255, 16) << i;
}

TEST(ReadPicture, ConvertsInksAndLeavesTheirProfile) {
    const TemporaryFolder folder;
    writeBytes(folder / "inks.jpg", cmykJpeg(20, 10));
    const auto read = zelcli::readPicture(folder / "inks.jpg", false);
    EXPECT_EQ(read.image.width, 20);
    EXPECT_TRUE(read.image.iccProfile.empty());
    EXPECT_EQ(read.notes.size(), 2u);
}

TEST(ReadPicture, RefusesWhatIsNotAWholePicture) {
    const TemporaryFolder folder;
    const zelcli::Image image = testImage(60, 50, 4);
    for (const char* name : {"p.png", "p.jpg"}) {
        zelcli::writePicture(folder / name, image);
        const Bytes whole = readBytes(folder / name);
        for (const std::size_t keep : {whole.size() - 2, whole.size() / 2, std::size_t{40}, std::size_t{9}}) {
            writeBytes(folder / "cut",
                       Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(keep)));
            const std::string why = failureOf(folder / "cut");
            EXPECT_NE(why, "accepted") << name << " cut to " << keep;
            if (keep > 40) {
                EXPECT_THAT(why, HasSubstr("ends early")) << name << " cut to " << keep;
            }
        }
    }
    Bytes damaged = zelcli::encodePng(image);
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

TEST(ReadPicture, RefusesAbsurdSizesBeforeItDecodes) {
    const TemporaryFolder folder;
    // A whole JPEG whose frame head claims 65,500 by 65,500 pixels.
    Bytes jpeg = zelcli::encodeJpeg(testImage(16, 16, 5));
    for (std::size_t i = 0; i + 9 < jpeg.size(); ++i)
        if (jpeg[i] == 0xFF && jpeg[i + 1] == 0xC0) {
            for (const std::size_t at : {5u, 7u}) jpeg[i + at] = 0xFF, jpeg[i + at + 1] = 0xDC;
            break;
        }
    writeBytes(folder / "huge.jpg", jpeg);
    EXPECT_THAT(failureOf(folder / "huge.jpg"), HasSubstr("65500 by 65500"));
}

TEST(ReadMask, TakesGreyWeighedByAlpha) {
    const TemporaryFolder folder;
    const zelcli::Image image{3, 1, {255, 255, 255, 255, 255, 255, 255, 0, 100, 100, 100, 255}, {}, {}};
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
