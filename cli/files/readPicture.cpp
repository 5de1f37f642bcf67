#include "readPicture.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>

#include "exifBlock.h"
#include "jpegFile.h"
#include "orientation.h"
#include "pngFile.h"
#include "zel_effects/zel_effects.h"

namespace zel {

namespace {

/// Sides and size that the library's operations are made for; 2^28 pixels are one gigabyte of RGBA.
constexpr std::uint64_t kLongestSide = 32767, kMostPixels = std::uint64_t{1} << 28;

/// The library takes a file's length as an int.
constexpr off_t kLargestFile = std::numeric_limits<int>::max();

struct FreeDeleter {
    void operator()(unsigned char* p) const { std::free(p); }
};
using LibraryPixels = std::unique_ptr<unsigned char, FreeDeleter>;

class FileDescriptor {
public:
    explicit FileDescriptor(const std::filesystem::path& path)
        : m_fd(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}  // a named pipe must not block
    ~FileDescriptor() {
        if (m_fd >= 0) close(m_fd);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    int get() const { return m_fd; }

private:
    int m_fd;
};

void checkSize(std::uint64_t width, std::uint64_t height) {
    if (width < 1 || height < 1) throw Failure("has no pixels");
    if (width > kLongestSide || height > kLongestSide || width * height > kMostPixels)
        throw Failure("claims " + std::to_string(width) + " by " + std::to_string(height) +
                      " pixels, more than this program takes (" + std::to_string(kLongestSide) + " a side, " +
                      std::to_string(kMostPixels >> 20) + " million in all)");
}

std::optional<FileMeta> readMeta(const std::vector<unsigned char>& file) {
    if (isPng(file)) return readPngMeta(file);
    if (isJpeg(file)) return readJpegMeta(file);
    return std::nullopt;
}

/// An ICC profile names the colour space of its pixels at byte 16.
bool isRgbProfile(const std::vector<unsigned char>& profile) {
    return profile.size() >= 20 && std::memcmp(profile.data() + 16, "RGB ", 4) == 0;
}

Image takePixels(LibraryPixels pixels, int width, int height) {
    if (!pixels) throw Failure("is not a picture that can be decoded");
    checkSize(static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height));
    Image image;
    image.width = width;
    image.height = height;
    image.rgba.assign(pixels.get(), pixels.get() + std::size_t{4} * static_cast<std::size_t>(width) *
                                                       static_cast<std::size_t>(height));
    return image;
}

Image decode(std::vector<unsigned char>& file) {
    int width = 0, height = 0, channels = 0;
    LibraryPixels pixels(ZelImageCore::StbImageUtil::loadImageFromMemory(
        file.data(), static_cast<int>(file.size()), width, height, channels, true, 0, false));
    return takePixels(std::move(pixels), width, height);
}

Image decodeScrambled(const std::filesystem::path& path) {
    int width = 0, height = 0, channels = 0;
    LibraryPixels pixels(ZelImageCore::StbImageUtil::loadImageFromFile(path.string(), width, height, channels,
                                                                       true, true, 0, false, nullptr));
    return takePixels(std::move(pixels), width, height);
}

/// Moves what the file carried to the picture and turns it upright.
void applyMeta(FileMeta& meta, LoadedPicture& picture) {
    if (meta.deepSamples) picture.notes.emplace_back("16 bits a channel are reduced to 8");
    if (meta.cmyk) picture.notes.emplace_back("CMYK inks are converted to RGB without a profile");
    Image& image = picture.image;
    if (!meta.iccProfile.empty()) {
        if (isRgbProfile(meta.iccProfile))
            image.iccProfile = std::move(meta.iccProfile);
        else
            picture.notes.emplace_back("its colour profile is not for RGB and is left out");
    }
    turnUpright(image, exifOrientation(meta.exif));
    image.exif = std::move(meta.exif);
    adaptExif(image.exif, image.width, image.height);
}

}  // namespace

UserPath UserPath::operator/(const std::string& name) const {
    UserPath path;
    path.shown = (std::filesystem::path(shown) / name).string();
    path.real = real / name;
    return path;
}

std::vector<unsigned char> readFileBytes(const std::filesystem::path& path) {
    const FileDescriptor file(path);
    struct stat status {};
    if (file.get() < 0 || fstat(file.get(), &status) != 0) throw Failure(std::strerror(errno));
    if (S_ISDIR(status.st_mode)) throw Failure("is a folder");
    if (!S_ISREG(status.st_mode)) throw Failure("is not a regular file");
    if (status.st_size > kLargestFile) throw Failure("is larger than two gigabytes");
    std::vector<unsigned char> bytes(static_cast<std::size_t>(status.st_size));
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const ssize_t count = read(file.get(), bytes.data() + filled, bytes.size() - filled);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw Failure(std::strerror(errno));
        if (count == 0) break;  // the file shrank meanwhile
        filled += static_cast<std::size_t>(count);
    }
    bytes.resize(filled);
    return bytes;
}

LoadedPicture readPicture(const std::filesystem::path& path, bool scrambled) {
    auto file = readFileBytes(path);
    if (file.empty()) throw Failure("is empty");
    LoadedPicture picture;
    if (scrambled) {
        picture.image = decodeScrambled(path);
        return picture;
    }
    auto meta = readMeta(file);
    if (meta) checkSize(meta->width, meta->height);
    picture.image = decode(file);
    if (meta) applyMeta(*meta, picture);
    return picture;
}

Mask readMask(const std::filesystem::path& path) {
    const Image image = readPicture(path, false).image;
    Mask mask{image.width, image.height, {}};
    mask.samples.reserve(image.rgba.size() / 4);
    for (std::size_t i = 0; i < image.rgba.size(); i += 4) {
        const unsigned char* p = image.rgba.data() + i;
        const int luma = (306 * p[0] + 601 * p[1] + 117 * p[2]) >> 10;  // 10-bit Rec. 601 weights
        mask.samples.push_back(static_cast<unsigned char>(luma * p[3] / 255));
    }
    return mask;
}

}  // namespace zel
