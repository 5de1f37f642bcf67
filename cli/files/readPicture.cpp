#include "cli/files/readPicture.h"

#include <cstring>
#include <optional>

#include "cli/files/exifBlock.h"
#include "cli/files/jpegFile.h"
#include "cli/files/orientation.h"
#include "cli/files/pngFile.h"
#include "cli/library.h"
#include "platform/fileBytes.h"
#include "zellab/imageproc/core/luma.h"

namespace zelcli {

namespace {

/// Sides and size that the library's operations are made for; 2^28 pixels are one gigabyte of RGBA.
constexpr std::uint64_t kLongestSide = ZEL_LONGEST_SIDE, kMostPixels = std::uint64_t{1} << 28;

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

Image copyOf(zel_picture* picture) {
    const zel_pixels pixels = libzel::pixelsOf(picture);
    checkSize(static_cast<std::uint64_t>(pixels.width), static_cast<std::uint64_t>(pixels.height));
    return imageOf(pixels);
}

Image decode(const std::vector<unsigned char>& file, bool scrambled) {
    auto options = libzel::sized<zel_decode_options>();
    options.scrambled = scrambled;
    zel_picture* picture = nullptr;
    const zel_status status = zel_decode_memory(library(), file.data(), file.size(), &options, &picture);
    const libzel::Picture decoded(picture);
    if (status != ZEL_OK) throw Failure(zel_message());
    return copyOf(picture);
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
    auto file = zellab::platform::readFileBytes(path.c_str());
    if (!file.bytes) throw Failure(file.why);
    return std::move(*file.bytes);
}

LoadedPicture readPicture(const std::filesystem::path& path, bool scrambled) {
    auto file = readFileBytes(path);
    if (file.empty()) throw Failure("is empty");
    LoadedPicture picture;
    if (scrambled) {
        picture.image = decode(file, true);
        return picture;
    }
    auto meta = readMeta(file);
    if (meta) checkSize(meta->width, meta->height);
    picture.image = decode(file, false);
    if (meta) applyMeta(*meta, picture);
    return picture;
}

Mask readMask(const std::filesystem::path& path) {
    const Image image = readPicture(path, false).image;
    Mask mask{image.width, image.height, {}};
    mask.samples.reserve(image.rgba.size() / 4);
    for (std::size_t i = 0; i < image.rgba.size(); i += 4) {
        const unsigned char* p = image.rgba.data() + i;
        mask.samples.push_back(static_cast<unsigned char>(zellab::lumaOf(p) * p[3] / 255));
    }
    return mask;
}

}  // namespace zelcli
