#include "cli/files/pngFile.h"

#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <functional>
#include <string>

#include "cli/failure.h"

namespace zelcli {

namespace {

constexpr unsigned char kSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::size_t kChunkFrame = 12;  // length, type and checksum around a chunk's bytes

/// Portraits are noisy: level 4 is a third of the time of the default level for one or two per cent more
/// bytes.
constexpr int kCompressionLevel = 4;

std::uint32_t bigEndian(const unsigned char* p) {
    return std::uint32_t{p[0]} << 24 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[2]} << 8 | p[3];
}

/// Calls visit(type, bytes) for each chunk up to IEND; throws where the chain breaks or a checksum of a chunk
/// that the picture needs (an upper-case type) is wrong.
template <typename Visit>
void walkChunks(std::span<const unsigned char> file, const Visit& visit) {
    std::size_t at = sizeof kSignature;
    for (;;) {
        if (file.size() - at < kChunkFrame) throw Failure("the PNG file ends early");
        const std::size_t length = bigEndian(file.data() + at);
        if (length > file.size() - at - kChunkFrame) throw Failure("the PNG file ends early");
        const std::string type(reinterpret_cast<const char*>(file.data() + at + 4), 4);
        const auto sum = crc32(0, file.data() + at + 4, static_cast<uInt>(length + 4));
        const bool needed = (type[0] & 0x20) == 0;
        if (needed && sum != bigEndian(file.data() + at + 8 + length))
            throw Failure("the PNG file is damaged (checksum of its " + type + " chunk)");
        if (sum == bigEndian(file.data() + at + 8 + length)) visit(type, file.subspan(at + 8, length));
        if (type == "IEND") return;
        at += kChunkFrame + length;
    }
}

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

struct ReadCursor {
    std::span<const unsigned char> rest;
    static void read(png_structp png, png_bytep target, png_size_t count) {
        auto& rest = static_cast<ReadCursor*>(png_get_io_ptr(png))->rest;
        if (count > rest.size()) png_error(png, "end of file");
        std::memcpy(target, rest.data(), count);
        rest = rest.subspan(count);
    }
};

/// The colour profile, through libpng, which unpacks and checks it.
std::vector<unsigned char> readProfile(std::span<const unsigned char> file) {
    PngErrors errors;
    png_structp png =
        png_create_read_struct(PNG_LIBPNG_VER_STRING, &errors, PngErrors::fail, PngErrors::warn);
    if (!png) throw std::bad_alloc();
    png_infop info = png_create_info_struct(png);
    ReadCursor cursor{file};
    png_bytep profile = nullptr;
    png_uint_32 length = 0;
    runGuarded(png, [&] {
        png_charp name = nullptr;
        int compression = 0;
        png_set_read_fn(png, &cursor, ReadCursor::read);
        png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
        png_read_info(png, info);
        png_get_iCCP(png, info, &name, &compression, &profile, &length);
    });
    std::vector<unsigned char> bytes;
    if (profile) bytes.assign(profile, profile + length);
    png_destroy_read_struct(&png, &info, nullptr);
    return bytes;
}

/// What an encoder needs to know; rows are `rowBytes` apart and converted by `prepare` into `line`.
struct EncodeJob {
    int width = 0, height = 0, colourType = PNG_COLOR_TYPE_RGB, bitDepth = 8;
    std::span<const unsigned char> exif, iccProfile;
    std::function<const unsigned char*(int y)> row;
};

void appendBytes(png_structp png, png_bytep bytes, png_size_t count) {
    auto& file = *static_cast<std::vector<unsigned char>*>(png_get_io_ptr(png));
    file.insert(file.end(), bytes, bytes + count);
}

void writeAll(png_structp png, png_infop info, const EncodeJob& job) {
    png_set_compression_level(png, kCompressionLevel);
    // A profile that libpng holds for flawed is still the user's: carry it as it is.
    png_set_option(png, PNG_SKIP_sRGB_CHECK_PROFILE, PNG_OPTION_ON);
    png_set_benign_errors(png, 1);
    png_set_IHDR(png, info, static_cast<png_uint_32>(job.width), static_cast<png_uint_32>(job.height),
                 job.bitDepth, job.colourType, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    if (!job.iccProfile.empty())
        png_set_iCCP(png, info, "profile", PNG_COMPRESSION_TYPE_BASE, job.iccProfile.data(),
                     static_cast<png_uint_32>(job.iccProfile.size()));
    if (!job.exif.empty())
        // libpng copies the block; its argument only lacks a const.
        png_set_eXIf_1(png, info, static_cast<png_uint_32>(job.exif.size()),
                       const_cast<png_bytep>(job.exif.data()));
    png_write_info(png, info);
    if constexpr (std::endian::native == std::endian::little)
        if (job.bitDepth == 16) png_set_swap(png);
    for (int y = 0; y < job.height; ++y) png_write_row(png, job.row(y));
    png_write_end(png, info);
}

std::vector<unsigned char> encode(const EncodeJob& job) {
    PngErrors errors;
    png_structp png =
        png_create_write_struct(PNG_LIBPNG_VER_STRING, &errors, PngErrors::fail, PngErrors::warn);
    if (!png) throw std::bad_alloc();
    png_infop info = png_create_info_struct(png);
    std::vector<unsigned char> file;
    png_set_write_fn(png, &file, appendBytes, nullptr);
    const bool done = runGuarded(png, [&] { writeAll(png, info, job); });
    png_destroy_write_struct(&png, &info);
    if (!done) throw Failure("cannot be stored as PNG (" + errors.text + ")");
    return file;
}

bool isOpaque(const Image& image) {
    for (std::size_t i = 3; i < image.rgba.size(); i += 4)
        if (image.rgba[i] != 255) return false;
    return true;
}

}  // namespace

bool isPng(std::span<const unsigned char> file) {
    return file.size() >= sizeof kSignature && std::equal(kSignature, kSignature + 8, file.begin());
}

FileMeta readPngMeta(std::span<const unsigned char> file) {
    FileMeta meta;
    bool hasProfile = false;
    walkChunks(file, [&](const std::string& type, std::span<const unsigned char> bytes) {
        if (type == "IHDR" && bytes.size() >= 13) {
            meta.width = bigEndian(bytes.data());
            meta.height = bigEndian(bytes.data() + 4);
            meta.deepSamples = bytes[8] > 8;
        } else if (type == "eXIf") {
            meta.exif.assign(bytes.begin(), bytes.end());
        } else if (type == "iCCP") {
            hasProfile = true;
        }
    });
    if (hasProfile) meta.iccProfile = readProfile(file);
    return meta;
}

std::vector<unsigned char> encodePng(const Image& image) {
    EncodeJob job{image.width, image.height, PNG_COLOR_TYPE_RGB_ALPHA, 8, image.exif, image.iccProfile, {}};
    const auto width = static_cast<std::size_t>(image.width);
    const auto source = [&](int y) { return image.rgba.data() + 4 * width * static_cast<std::size_t>(y); };
    if (!isOpaque(image)) {
        job.row = source;
        return encode(job);
    }
    std::vector<unsigned char> line(3 * width);
    job.colourType = PNG_COLOR_TYPE_RGB;
    job.row = [&](int y) {
        const unsigned char* pixels = source(y);
        for (std::size_t x = 0; x < width; ++x) std::copy_n(pixels + 4 * x, 3, line.data() + 3 * x);
        return line.data();
    };
    return encode(job);
}

std::vector<unsigned char> encodeGray16Png(int width, int height, std::span<const std::uint16_t> samples) {
    EncodeJob job{width, height, PNG_COLOR_TYPE_GRAY, 16, {}, {}, {}};
    job.row = [&](int y) {
        return reinterpret_cast<const unsigned char*>(samples.data() + static_cast<std::size_t>(width) *
                                                                           static_cast<std::size_t>(y));
    };
    return encode(job);
}

std::vector<unsigned char> encodeGrayPng(const Mask& mask) {
    EncodeJob job{mask.width, mask.height, PNG_COLOR_TYPE_GRAY, 8, {}, {}, {}};
    job.row = [&](int y) {
        return mask.samples.data() + static_cast<std::size_t>(mask.width) * static_cast<std::size_t>(y);
    };
    return encode(job);
}

}  // namespace zelcli
