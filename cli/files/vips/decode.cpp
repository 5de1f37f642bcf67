#include <algorithm>
#include <cstring>
#include <string>

#include "cli/failure.h"
#include "cli/files/pictureCodec.h"
#include "cli/files/vips/colourSpace.h"
#include "cli/files/vips/jpegHead.h"
#include "cli/files/vips/metadataBlocks.h"
#include "cli/files/vips/vipsImage.h"

namespace zelcli {

namespace {

using Notes = std::vector<std::string>;

struct GFree {
    void operator()(void* memory) const { g_free(memory); }
};

VipsPicture open(std::span<const unsigned char> file, const std::string& loader) {
    // Reading from top to bottom needs no second copy of the decoded picture. A lossless format with an error is
    // damaged for good; a photograph with odd bytes between its parts is whole.
    VipsImage* image = vips_image_new_from_buffer(
        file.data(), file.size(), "", "access", VIPS_ACCESS_SEQUENTIAL, "fail_on",
        loader.find("Png") == loader.npos ? VIPS_FAIL_ON_TRUNCATED : VIPS_FAIL_ON_ERROR, nullptr);
    requireVips(image ? 0 : -1);
    return VipsPicture(image);
}

std::span<const unsigned char> blobOf(VipsImage* image, const char* name) {
    const void* data = nullptr;
    std::size_t size = 0;
    if (!vips_image_get_typeof(image, name) || vips_image_get_blob(image, name, &data, &size) != 0) return {};
    return {static_cast<const unsigned char*>(data), size};
}

int numberOf(VipsImage* image, const char* name, int otherwise) {
    int value = otherwise;
    if (vips_image_get_typeof(image, name)) vips_image_get_int(image, name, &value);
    return value;
}

/// Empty for the readers that are not used.
std::string nameOfLoader(const std::string& loader) {
    constexpr std::pair<const char*, const char*> kNames[] = {
        {"Jpeg", "JPEG"}, {"Png", "PNG"},        {"Tiff", "TIFF"}, {"Webp", "WebP"},
        {"Heif", "HEIF"}, {"Jp2k", "JPEG 2000"}, {"Nsgif", "GIF"}};
    for (const auto& [part, name] : kNames)
        if (loader.find(part) != loader.npos) return name;
    return {};
}

std::optional<PictureFormat> formatOf(VipsImage* image, const std::string& loader) {
    const std::string name = nameOfLoader(loader);
    if (name == "HEIF") {
        const char* codec = "";
        if (vips_image_get_typeof(image, "heif-compression"))
            vips_image_get_string(image, "heif-compression", &codec);
        return std::strcmp(codec, "av1") == 0 ? std::optional(PictureFormat::avif) : std::nullopt;
    }
    for (const auto format :
         {PictureFormat::png, PictureFormat::jpeg, PictureFormat::tiff, PictureFormat::webp})
        if (name == nameOf(format)) return format;
    return std::nullopt;
}

bool isValidUtf8(const char* text) {
    return g_utf8_validate(text, -1, nullptr) != FALSE;
}

/// Texts of a PNG file, which libvips lists as "png-comment-3-Title".
void readTexts(VipsImage* image, Metadata& metadata) {
    char** fields = vips_image_get_fields(image);
    for (char** field = fields; field && *field; ++field) {
        const std::string name = *field, prefix = "png-comment-";
        const auto dash = name.find('-', prefix.size());
        if (name.rfind(prefix, 0) != 0 || dash == name.npos) continue;
        const std::string keyword = name.substr(dash + 1);
        const char* text = nullptr;
        if (keyword.rfind("Raw profile type", 0) == 0 || vips_image_get_string(image, *field, &text) != 0)
            continue;
        if (isValidUtf8(text)) {
            metadata.texts.emplace_back(keyword, text);
        } else if (const std::unique_ptr<char, GFree> latin{
                       g_convert(text, -1, "UTF-8", "ISO-8859-1", nullptr, nullptr, nullptr)}) {
            metadata.texts.emplace_back(keyword, latin.get());
        }
    }
    g_strfreev(fields);
}

/// Where libvips does not know the kind of an item, it lists it as "heif-mime-1".
std::span<const unsigned char> xmpOfHeif(VipsImage* image) {
    auto xmp = blobOf(image, VIPS_META_XMP_NAME);
    constexpr int kMostItems = 8;
    constexpr char kSign[] = "<rdf:RDF";
    for (int i = 0; i < kMostItems && xmp.empty(); ++i) {
        const auto item = blobOf(image, ("heif-mime-" + std::to_string(i)).c_str());
        if (std::search(item.begin(), item.end(), kSign, kSign + sizeof kSign - 1) != item.end()) xmp = item;
    }
    return xmp;
}

/// What a file carries that libvips and exiv2 know between them.
void readCarried(std::span<const unsigned char> file, VipsImage* image, const std::string& kind,
                 Metadata& metadata, Notes& notes) {
    if (kind == "HEIF") {
        auto exif = blobOf(image, VIPS_META_EXIF_NAME);
        constexpr unsigned char kHead[] = {'E', 'x', 'i', 'f', 0, 0};
        if (exif.size() > sizeof kHead && std::equal(std::begin(kHead), std::end(kHead), exif.begin()))
            exif = exif.subspan(sizeof kHead);
        metadata.exif.assign(exif.begin(), exif.end());
        const auto xmp = xmpOfHeif(image);
        metadata.xmp.assign(xmp.begin(), xmp.end());
    } else if (kind != "GIF") {
        readMetadata(file, metadata, notes);
    }
    if (kind == "PNG") {
        readTexts(image, metadata);
        metadata.comment.clear();  // one of the texts
    }
    const auto profile = blobOf(image, VIPS_META_ICC_NAME);
    metadata.iccProfile.assign(profile.begin(), profile.end());
    const bool ownResolution = kind == "JPEG" || kind == "PNG" || kind == "TIFF";
    if (ownResolution && vips_image_get_typeof(image, VIPS_META_RESOLUTION_UNIT)) {
        metadata.dotsPerMm[0] = vips_image_get_xres(image);
        metadata.dotsPerMm[1] = vips_image_get_yres(image);
    }
}

bool isDeep(VipsImage* image) {
    return vips_image_get_format(image) != VIPS_FORMAT_UCHAR;
}

/// Whether the stored colours need their profile to be understood at all.
bool isInkOrGrey(VipsImage* image) {
    const auto kind = vips_image_get_interpretation(image);
    return kind == VIPS_INTERPRETATION_CMYK || kind == VIPS_INTERPRETATION_B_W ||
           kind == VIPS_INTERPRETATION_GREY16;
}

/// Inks, and grey with a profile, become sRGB here; RGB profiles are dealt with when all is in 8 bits.
void convertByProfile(VipsPicture& picture, Metadata& metadata, Notes& notes) {
    if (!isInkOrGrey(picture.get())) return;
    const bool inks = vips_image_get_interpretation(picture.get()) == VIPS_INTERPRETATION_CMYK;
    if (!inks && metadata.iccProfile.empty()) return;
    const bool own = !metadata.iccProfile.empty();
    metadata.iccProfile.clear();
    try {
        change(picture, [](VipsImage* in, VipsImage** out) {
            return vips_icc_transform(in, out, "srgb", "embedded", TRUE, "input_profile", "cmyk", "intent",
                                      VIPS_INTENT_RELATIVE, "black_point_compensation", TRUE, nullptr);
        });
        notes.emplace_back(!inks ? "its grey profile is turned into sRGB"
                           : own ? "CMYK inks are converted to sRGB by the file's profile"
                                 : "CMYK inks are converted to sRGB by a common profile, the file has none");
    } catch (const Failure&) {
        notes.emplace_back("its colour profile cannot be used and is left out");
    }
}

/// Four bytes a pixel.
void toRgba(VipsPicture& picture) {
    if (vips_image_get_interpretation(picture.get()) != VIPS_INTERPRETATION_sRGB || isDeep(picture.get()))
        change(picture, [](VipsImage* in, VipsImage** out) {
            return vips_colourspace(in, out, VIPS_INTERPRETATION_sRGB, nullptr);
        });
    if (isDeep(picture.get()))
        change(picture, [](VipsImage* in, VipsImage** out) { return vips_cast_uchar(in, out, nullptr); });
    if (vips_image_get_bands(picture.get()) == 3)
        change(picture,
               [](VipsImage* in, VipsImage** out) { return vips_bandjoin_const1(in, out, 255, nullptr); });
    if (vips_image_get_bands(picture.get()) > 4)
        change(picture,
               [](VipsImage* in, VipsImage** out) { return vips_extract_band(in, out, 0, "n", 4, nullptr); });
    if (vips_image_get_bands(picture.get()) != 4)
        throw Failure("has pixels of a kind that this program does not know");
}

void turnUpright(VipsPicture& picture) {
    if (vips_image_get_orientation(picture.get()) == 1) return;
    // Turning reads the picture in another order than its file gives it.
    change(picture, [](VipsImage* in, VipsImage** out) {
        *out = vips_image_copy_memory(in);
        return *out ? 0 : -1;
    });
    change(picture, [](VipsImage* in, VipsImage** out) { return vips_autorot(in, out, nullptr); });
}

/// Decodes into the image's own memory.
void readPixels(VipsImage* picture, Image& image) {
    image.width = vips_image_get_width(picture);
    image.height = vips_image_get_height(picture);
    image.rgba.resize(4 * static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height));
    const VipsPicture target(vips_image_new_from_memory(image.rgba.data(), image.rgba.size(), image.width,
                                                        image.height, 4, VIPS_FORMAT_UCHAR));
    requireVips(target ? vips_image_write(picture, target.get()) : -1);
}

void noteKind(VipsImage* image, const std::string& kind, Notes& notes) {
    const int pages = numberOf(image, VIPS_META_N_PAGES, 1);
    // What JPEG 2000 lists are reductions of the one picture.
    if (pages > 1 && kind != "JPEG 2000")
        notes.push_back("the first of " + std::to_string(pages) + (kind == "GIF" ? " frames" : " pages") +
                        " is read");
    if (isDeep(image))
        notes.emplace_back(vips_image_get_format(image) == VIPS_FORMAT_USHORT
                               ? "16 bits a channel are reduced to 8"
                               : "more than 8 bits a channel are reduced to 8");
}

/// The message of a decoder, for somebody who has a file and not a decoder.
std::string inPlainWords(const std::string& why, const std::string& kind) {
    for (const char* cut : {"remature end", "runcated", "end of file", "end of stream", "not enough data",
                            "too short", "bad seek", "out of order read", "EOF"})
        if (why.find(cut) != why.npos) return "the " + kind + " file ends early";
    if (why.find("read error") != why.npos) return "the " + kind + " file is damaged or ends early";
    return "the " + kind + " file is damaged" + (why.empty() ? "" : " (" + why + ")");
}

LoadedPicture decode(std::span<const unsigned char> file, const std::string& loader,
                     const ReadOptions& options) {
    LoadedPicture loaded;
    const auto origin = std::make_shared<Origin>();
    const std::string kind = nameOfLoader(loader);
    VipsPicture picture = open(file, loader);
    checkSize(static_cast<std::uint64_t>(vips_image_get_width(picture.get())),
              static_cast<std::uint64_t>(vips_image_get_height(picture.get())), options);
    origin->traits.format = formatOf(picture.get(), loader);
    origin->traits.grey = isInkOrGrey(picture.get()) &&
                          vips_image_get_interpretation(picture.get()) != VIPS_INTERPRETATION_CMYK;
    if (isJpeg(file)) readJpegTraits(file, origin->traits);
    readCarried(file, picture.get(), kind, origin->metadata, loaded.notes);
    noteKind(picture.get(), kind, loaded.notes);

    convertByProfile(picture, origin->metadata, loaded.notes);
    toRgba(picture);
    turnUpright(picture);
    readPixels(picture.get(), loaded.image);
    adaptMetadata(origin->metadata, loaded.image.width, loaded.image.height);
    if (isWide(origin->metadata.iccProfile)) {
        WideColours& wide = origin->wide.emplace();
        wide.seen = toSrgb(loaded.image.rgba, origin->metadata.iccProfile);
        wide.stored = std::move(loaded.image.rgba);
        loaded.image.rgba = wide.seen;
    }
    loaded.image.origin = origin;
    return loaded;
}

}  // namespace

LoadedPicture decodePicture(std::span<const unsigned char> file, const ReadOptions& options) {
    startVips();
    const char* loader =
        options.scrambled ? nullptr : vips_foreign_find_load_buffer(file.data(), file.size());
    vips_error_clear();
    // Readers that libvips has from elsewhere are many, and not made for files from anywhere.
    if (!loader || nameOfLoader(loader).empty()) return {decodeByLibrary(file, options), {}};
    try {
        return decode(file, loader, options);
    } catch (const VipsFailure& failure) {
        throw Failure(inPlainWords(failure.what(), nameOfLoader(loader)));
    }
}

}  // namespace zelcli
