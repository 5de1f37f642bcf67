#include <stb/stb_image_write.h>

#include <cstring>

#include "cli/failure.h"
#include "cli/files/pictureCodec.h"
#include "cli/files/pixelRows.h"
#include "cli/files/pngWriter.h"

namespace zelcli {

namespace {

constexpr int kJpegQuality = 95;

void append(void* user, void* data, int size) {
    auto& file = *static_cast<std::vector<unsigned char>*>(user);
    const auto* const bytes = static_cast<const unsigned char*>(data);
    file.insert(file.end(), bytes, bytes + size);
}

std::vector<unsigned char> encodeJpeg(const PackedPixels& pixels, int quality) {
    std::vector<unsigned char> file;
    if (!stbi_write_jpg_to_func(append, &file, pixels.width, pixels.height, pixels.channels,
                                pixels.bytes.data(), quality))
        throw Failure("cannot be stored as JPEG");
    return file;
}

}  // namespace

bool canWrite(PictureFormat format) {
    return format == PictureFormat::png || format == PictureFormat::jpeg;
}

LoadedPicture decodePicture(std::span<const unsigned char> file, const ReadOptions& options) {
    LoadedPicture loaded{decodeByLibrary(file, options), {}};
    if (!options.scrambled)
        loaded.notes.emplace_back(
            "this build of zel reads the pixels alone: orientation, EXIF and profile are lost");
    return loaded;
}

std::vector<unsigned char> encodePicture(const Image& image, PictureFormat format, const SaveOptions& options,
                                         std::vector<std::string>&) {
    const PackedPixels pixels = packPixels(image, image.rgba, format == PictureFormat::png);
    if (format == PictureFormat::png) return encodePng(pixels, {}, options.compression.value_or(-1));
    if (format == PictureFormat::jpeg) return encodeJpeg(pixels, options.quality.value_or(kJpegQuality));
    throw Failure(std::string("this build of zel does not write ") + nameOf(format));
}

}  // namespace zelcli
