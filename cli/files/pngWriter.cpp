#include "cli/files/pngWriter.h"

#include <png.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <functional>
#include <string>

#include "cli/failure.h"

namespace zelcli {

namespace {

/// The fast setting: photographs are noisy, so that more effort with the choice of a filter for each row gives an
/// eighth fewer bytes for three times the time.
constexpr int kFastLevel = 2, kFastFilter = PNG_FILTER_UP;

constexpr const char* kXmpKeyword = "XML:com.adobe.xmp";
constexpr const char* kIptcKeyword = "Raw profile type iptc";
constexpr const char* kCommentKeyword = "Comment";
constexpr std::size_t kLongestKeyword = 79;

/// Libpng's failures jump here; its warnings are dropped.
struct PngErrors {
    std::string text;
    static void fail(png_structp png, png_const_charp message) {
        static_cast<PngErrors*>(png_get_error_ptr(png))->text = message;
        png_longjmp(png, 1);
    }
    static void warn(png_structp, png_const_charp) {}
};

/// Runs work(); false when libpng jumped out of it. Nothing with a destructor may live in `work`.
bool runGuarded(png_structp png, const std::function<void()>& work) {
    if (setjmp(png_jmpbuf(png))) return false;
    work();
    return true;
}

/// Caption records in the form that readers of PNG know: a name, a length and hexadecimal digits.
std::string rawProfile(std::span<const unsigned char> bytes) {
    constexpr std::size_t kBytesPerLine = 36;
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text = "\niptc\n" + std::to_string(bytes.size());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i % kBytesPerLine == 0) text += '\n';
        text += kDigits[bytes[i] >> 4];
        text += kDigits[bytes[i] & 15];
    }
    return text + "\n";
}

bool isAscii(const std::string& text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

/// The text chunks of a file; they point into their own strings.
class Texts {
public:
    explicit Texts(const Metadata& metadata)
        : m_iptc(metadata.iptc.empty() ? "" : rawProfile(metadata.iptc)) {
        if (!metadata.xmp.empty()) add(PNG_ITXT_COMPRESSION_NONE, kXmpKeyword, metadata.xmp);
        if (!m_iptc.empty()) add(PNG_TEXT_COMPRESSION_zTXt, kIptcKeyword, m_iptc);
        for (const auto& [keyword, text] : metadata.texts)
            if (!keyword.empty() && keyword.size() <= kLongestKeyword) addText(keyword.c_str(), text);
        if (!metadata.comment.empty()) addText(kCommentKeyword, metadata.comment);
    }
    void give(png_structp png, png_infop info) const {
        if (!m_texts.empty()) png_set_text(png, info, m_texts.data(), static_cast<int>(m_texts.size()));
    }

private:
    void addText(const char* keyword, const std::string& text) {
        add(isAscii(text) ? PNG_TEXT_COMPRESSION_NONE : PNG_ITXT_COMPRESSION_NONE, keyword, text);
    }
    void add(int kind, const char* keyword, const std::string& text) {
        png_text entry{};
        entry.compression = kind;
        entry.key = const_cast<char*>(keyword);  // libpng copies; its structure lacks a const
        entry.text = const_cast<char*>(text.c_str());
        if (kind == PNG_ITXT_COMPRESSION_NONE)
            entry.itxt_length = text.size();
        else
            entry.text_length = text.size();
        m_texts.push_back(entry);
    }

    std::string m_iptc;
    std::vector<png_text> m_texts;
};

/// What an encoder needs to know.
struct EncodeJob {
    int width = 0, height = 0, colourType = PNG_COLOR_TYPE_RGB, bitDepth = 8;
    int compression = -1;
    std::size_t rowBytes = 0;
    const unsigned char* pixels = nullptr;
};

void appendBytes(png_structp png, png_bytep bytes, png_size_t count) {
    auto& file = *static_cast<std::vector<unsigned char>*>(png_get_io_ptr(png));
    file.insert(file.end(), bytes, bytes + count);
}

void writeHead(png_structp png, png_infop info, const Metadata& metadata, const Texts& texts) {
    // A profile that libpng holds for flawed is still the user's: carry it as it is.
    png_set_option(png, PNG_SKIP_sRGB_CHECK_PROFILE, PNG_OPTION_ON);
    png_set_benign_errors(png, 1);
    if (!metadata.iccProfile.empty())
        png_set_iCCP(png, info, "profile", PNG_COMPRESSION_TYPE_BASE, metadata.iccProfile.data(),
                     static_cast<png_uint_32>(metadata.iccProfile.size()));
    if (!metadata.exif.empty())
        png_set_eXIf_1(png, info, static_cast<png_uint_32>(metadata.exif.size()),
                       const_cast<png_bytep>(metadata.exif.data()));
    const auto perMetre = [](double perMm) { return static_cast<png_uint_32>(std::lround(perMm * 1000)); };
    if (metadata.dotsPerMm[0] > 0 && metadata.dotsPerMm[1] > 0)
        png_set_pHYs(png, info, perMetre(metadata.dotsPerMm[0]), perMetre(metadata.dotsPerMm[1]),
                     PNG_RESOLUTION_METER);
    texts.give(png, info);
}

void writeAll(png_structp png, png_infop info, const EncodeJob& job, const Metadata& metadata,
              const Texts& texts) {
    png_set_compression_level(png, job.compression < 0 ? kFastLevel : job.compression);
    if (job.compression < 0) png_set_filter(png, PNG_FILTER_TYPE_BASE, kFastFilter);
    png_set_IHDR(png, info, static_cast<png_uint_32>(job.width), static_cast<png_uint_32>(job.height),
                 job.bitDepth, job.colourType, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    writeHead(png, info, metadata, texts);
    png_write_info(png, info);
    if constexpr (std::endian::native == std::endian::little)
        if (job.bitDepth == 16) png_set_swap(png);
    for (int y = 0; y < job.height; ++y)
        png_write_row(png, job.pixels + job.rowBytes * static_cast<std::size_t>(y));
    png_write_end(png, nullptr);  // with the head again it would write the EXIF chunk twice
}

std::vector<unsigned char> encode(const EncodeJob& job, const Metadata& metadata) {
    PngErrors errors;
    png_structp png =
        png_create_write_struct(PNG_LIBPNG_VER_STRING, &errors, PngErrors::fail, PngErrors::warn);
    if (!png) throw std::bad_alloc();
    png_infop info = png_create_info_struct(png);
    const Texts texts(metadata);
    std::vector<unsigned char> file;
    png_set_write_fn(png, &file, appendBytes, nullptr);
    const bool done = runGuarded(png, [&] { writeAll(png, info, job, metadata, texts); });
    png_destroy_write_struct(&png, &info);
    if (!done) throw Failure("cannot be stored as PNG (" + errors.text + ")");
    return file;
}

}  // namespace

std::vector<unsigned char> encodePng(const PackedPixels& pixels, const Metadata& metadata, int compression) {
    const int colourType = pixels.channels == 1   ? PNG_COLOR_TYPE_GRAY
                           : pixels.channels == 4 ? PNG_COLOR_TYPE_RGB_ALPHA
                                                  : PNG_COLOR_TYPE_RGB;
    const auto rowBytes = static_cast<std::size_t>(pixels.width) * static_cast<std::size_t>(pixels.channels);
    return encode({pixels.width, pixels.height, colourType, 8, compression, rowBytes, pixels.bytes.data()},
                  metadata);
}

std::vector<unsigned char> encodeGray16Png(int width, int height, std::span<const std::uint16_t> samples) {
    return encode({width, height, PNG_COLOR_TYPE_GRAY, 16, -1, 2 * static_cast<std::size_t>(width),
                   reinterpret_cast<const unsigned char*>(samples.data())},
                  {});
}

std::vector<unsigned char> encodeGrayPng(const Mask& mask) {
    return encode({mask.width, mask.height, PNG_COLOR_TYPE_GRAY, 8, -1, static_cast<std::size_t>(mask.width),
                   mask.samples.data()},
                  {});
}

}  // namespace zelcli
