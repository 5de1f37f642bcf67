#include "cli/files/pictureFormat.h"

#include <algorithm>
#include <cctype>
#include <iterator>

#include "cli/failure.h"

namespace zelcli {

namespace {

struct Suffix {
    const char* text;
    PictureFormat format;
};

/// The first of each format is the one that new files get.
constexpr Suffix kSuffixes[] = {{".png", PictureFormat::png},   {".jpg", PictureFormat::jpeg},
                                {".jpeg", PictureFormat::jpeg}, {".tif", PictureFormat::tiff},
                                {".tiff", PictureFormat::tiff}, {".webp", PictureFormat::webp},
                                {".avif", PictureFormat::avif}};

/// Those that are read and not written.
constexpr const char* kReadSuffixes[] = {".jpe", ".jp2", ".j2k", ".jpf", ".heic", ".heif", ".gif", ".bmp",
                                         ".tga", ".psd", ".hdr", ".pic", ".ppm",  ".pgm",  ".pnm"};

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

std::optional<PictureFormat> find(const std::string& suffix) {
    for (const Suffix& known : kSuffixes)
        if (suffix == known.text) return known.format;
    return std::nullopt;
}

}  // namespace

const char* const kOutputSuffixes = ".png, .jpg, .jpeg, .tif, .tiff, .webp or .avif";

std::optional<PictureFormat> formatOfSuffix(const std::filesystem::path& path) {
    return find(lowerCase(path.extension().string()));
}

std::optional<PictureFormat> formatOfWord(const std::string& word) {
    return find(std::string(".").append(lowerCase(word)));
}

void requireFormat(const std::string& path, const char* option) {
    if (!formatOfSuffix(path))
        throw UsageError(std::string(option) + " must end in " + kOutputSuffixes + ", not '" + path + "'");
}

const char* nameOf(PictureFormat format) {
    constexpr const char* kNames[] = {"PNG", "JPEG", "TIFF", "WebP", "AVIF"};
    return kNames[static_cast<int>(format)];
}

const char* suffixOf(PictureFormat format) {
    return std::find_if(std::begin(kSuffixes), std::end(kSuffixes),
                        [format](const Suffix& known) { return known.format == format; })
        ->text;
}

bool looksLikePicture(const std::filesystem::path& path) {
    const std::string suffix = lowerCase(path.extension().string());
    return find(suffix) ||
           std::find(std::begin(kReadSuffixes), std::end(kReadSuffixes), suffix) != std::end(kReadSuffixes);
}

}  // namespace zelcli
