#include <cstring>

#include "cli/failure.h"
#include "cli/files/pictureCodec.h"
#include "cli/files/pixelRows.h"
#include "cli/files/pngWriter.h"
#include "cli/files/vips/colourSpace.h"
#include "cli/files/vips/metadataBlocks.h"
#include "cli/files/vips/vipsImage.h"

namespace zelcli {

namespace {

constexpr int kJpegQuality = 95, kWebpQuality = 90, kAvifQuality = 75;
/// Encoding effort of AVIF: 0 to 9; from here on more time gives hardly fewer bytes.
constexpr int kAvifEffort = 3;

/// What an encoder gave, in memory of libvips.
struct Encoded {
    void* data = nullptr;
    std::size_t size = 0;
    Encoded() = default;
    Encoded(const Encoded&) = delete;
    Encoded& operator=(const Encoded&) = delete;
    ~Encoded() { g_free(data); }
    std::vector<unsigned char> bytes() const {
        const auto* const begin = static_cast<const unsigned char*>(data);
        return {begin, begin + size};
    }
};

void setBlob(VipsImage* image, const char* name, std::span<const unsigned char> bytes) {
    if (!bytes.empty()) vips_image_set_blob_copy(image, name, bytes.data(), bytes.size());
}

std::span<const unsigned char> bytesOf(const std::string& text) {
    return {reinterpret_cast<const unsigned char*>(text.data()), text.size()};
}

/// The packed pixels as libvips sees them, with what it writes best itself: profile and resolution.
VipsPicture wrap(const PackedPixels& pixels, const Metadata& metadata) {
    const VipsPicture memory(vips_image_new_from_memory(pixels.bytes.data(), pixels.bytes.size(),
                                                        pixels.width, pixels.height, pixels.channels,
                                                        VIPS_FORMAT_UCHAR));
    requireVips(memory ? 0 : -1);
    const bool told = metadata.dotsPerMm[0] > 0 && metadata.dotsPerMm[1] > 0;
    VipsPicture picture = made([&](VipsImage** out) {
        return vips_copy(memory.get(), out, "interpretation",
                         pixels.channels == 1 ? VIPS_INTERPRETATION_B_W : VIPS_INTERPRETATION_sRGB, "xres",
                         told ? metadata.dotsPerMm[0] : 1.0, "yres", told ? metadata.dotsPerMm[1] : 1.0,
                         nullptr);
    });
    if (told) vips_image_set_string(picture.get(), VIPS_META_RESOLUTION_UNIT, "in");
    setBlob(picture.get(), VIPS_META_ICC_NAME, metadata.iccProfile);
    return picture;
}

/// Where nothing is told, what the input had; and full colour for inputs that were no JPEG.
bool halvesColour(const SaveOptions& options, const Traits& traits) {
    const auto wanted = options.subsampling ? options.subsampling : traits.subsampling;
    return wanted == Subsampling::quarter;
}

int jpegQuality(const SaveOptions& options, const Traits& traits) {
    return options.quality.value_or(traits.jpegQuality.value_or(kJpegQuality));
}

int encodeInto(Encoded& file, VipsImage* picture, PictureFormat format, const SaveOptions& options,
               const Traits& traits) {
    const auto subsampling =
        halvesColour(options, traits) ? VIPS_FOREIGN_SUBSAMPLE_ON : VIPS_FOREIGN_SUBSAMPLE_OFF;
    switch (format) {
        case PictureFormat::jpeg:
            return vips_jpegsave_buffer(picture, &file.data, &file.size, "Q", jpegQuality(options, traits),
                                        "subsample_mode", subsampling, "optimize_coding", TRUE, "interlace",
                                        traits.progressive ? TRUE : FALSE, nullptr);
        case PictureFormat::tiff:
            return vips_tiffsave_buffer(picture, &file.data, &file.size, "compression",
                                        options.compression == 0 ? VIPS_FOREIGN_TIFF_COMPRESSION_NONE
                                                                 : VIPS_FOREIGN_TIFF_COMPRESSION_DEFLATE,
                                        "predictor", VIPS_FOREIGN_TIFF_PREDICTOR_HORIZONTAL, nullptr);
        case PictureFormat::webp:
            return vips_webpsave_buffer(picture, &file.data, &file.size, "Q",
                                        options.quality.value_or(kWebpQuality), "lossless",
                                        options.lossless ? TRUE : FALSE, nullptr);
        case PictureFormat::avif:
            return vips_heifsave_buffer(
                picture, &file.data, &file.size, "Q", options.quality.value_or(kAvifQuality), "lossless",
                options.lossless ? TRUE : FALSE, "compression", VIPS_FOREIGN_HEIF_COMPRESSION_AV1, "effort",
                kAvifEffort, "subsample_mode", options.lossless ? VIPS_FOREIGN_SUBSAMPLE_OFF : subsampling,
                nullptr);
        case PictureFormat::png:
            break;
    }
    return -1;
}

/// What of the metadata the format has no place for, in words; it is taken out.
std::string leaveOut(Metadata& metadata, PictureFormat format) {
    std::string left;
    const auto take = [&](auto& part, const char* name) {
        if (!part.empty()) left.append(left.empty() ? "" : ", ").append(name);
        part.clear();
    };
    if (format == PictureFormat::png) return left;
    if (format == PictureFormat::webp || format == PictureFormat::avif) take(metadata.iptc, "IPTC captions");
    if (format != PictureFormat::jpeg) take(metadata.comment, "the comment");
    take(metadata.texts, "PNG texts");
    return left;
}

/// A PNG text "Comment" and the comment of a JPEG file are one thing.
void shareComment(Metadata& metadata, PictureFormat format) {
    if (format != PictureFormat::jpeg || !metadata.comment.empty()) return;
    for (auto at = metadata.texts.begin(); at != metadata.texts.end(); ++at)
        if (at->first == "Comment") {
            metadata.comment = at->second;
            metadata.texts.erase(at);
            return;
        }
}

/// What goes along, by the user's wish and the format's means.
Metadata metadataFor(const Image& image, PictureFormat format, const SaveOptions& options,
                     std::vector<std::string>& notes) {
    Metadata metadata;
    if (!image.origin) return metadata;
    metadata = image.origin->metadata;
    if (options.strip) {
        Metadata kept;
        kept.iccProfile = std::move(metadata.iccProfile);
        return kept;
    }
    if (options.noGps) removeGps(metadata);
    shareComment(metadata, format);
    const std::string left = leaveOut(metadata, format);
    if (!left.empty()) notes.push_back(std::string(nameOf(format)) + " cannot carry " + left);
    return metadata;
}

/// A JPEG file holds at most 64 kilobytes of each kind.
void writeMetadataAsFits(std::vector<unsigned char>& file, Metadata& metadata, PictureFormat format,
                         std::vector<std::string>& notes) {
    const std::vector<unsigned char> plain = file;
    const std::pair<const char*, void (*)(Metadata&)> cuts[] = {
        {"", [](Metadata&) {}},
        {"XMP data", [](Metadata& all) { all.xmp.clear(); }},
        {"EXIF data", [](Metadata& all) { all.exif.clear(); }},
        {"captions and comments", [](Metadata& all) { all.iptc.clear(), all.comment.clear(); }}};
    for (const auto& [name, cut] : cuts) {
        cut(metadata);
        if (*name) notes.push_back(std::string("its ") + name + " cannot be stored as " + nameOf(format));
        try {
            file = plain;
            writeMetadata(file, metadata);
            return;
        } catch (const std::exception&) {
        }
    }
    file = plain;
}

}  // namespace

bool canWrite(PictureFormat) {
    return true;
}

std::vector<unsigned char> encodePicture(const Image& image, PictureFormat format, const SaveOptions& options,
                                         std::vector<std::string>& notes) {
    Metadata metadata = metadataFor(image, format, options, notes);
    const bool keepAlpha = format != PictureFormat::jpeg;
    const bool wide = image.origin && image.origin->wide;
    const PackedPixels pixels = wide ? packPixels(image, inStoredColours(image), keepAlpha)
                                     : packPixels(image, image.rgba, keepAlpha);
    if (format == PictureFormat::png) return encodePng(pixels, metadata, options.compression.value_or(-1));
    startVips();
    const VipsPicture picture = wrap(pixels, metadata);
    if (format == PictureFormat::avif) {
        setBlob(picture.get(), VIPS_META_EXIF_NAME, metadata.exif);
        setBlob(picture.get(), VIPS_META_XMP_NAME, bytesOf(metadata.xmp));
    }
    Encoded file;
    try {
        requireVips(
            encodeInto(file, picture.get(), format, options, image.origin ? image.origin->traits : Traits()));
    } catch (const VipsFailure& failure) {
        throw Failure(std::string("cannot be stored as ") + nameOf(format) + " (" + failure.what() + ")");
    }
    std::vector<unsigned char> bytes = file.bytes();
    if (format != PictureFormat::avif) writeMetadataAsFits(bytes, metadata, format, notes);
    return bytes;
}

}  // namespace zelcli
