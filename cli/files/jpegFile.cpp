#include "cli/files/jpegFile.h"

#include <csetjmp>
#include <cstdio>  // jpeglib.h wants FILE
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

// jpeglib.h must come after the standard headers above
#include <jpeglib.h>

#include "cli/failure.h"

namespace zelcli {

namespace {

constexpr int kQuality = 95;
constexpr int kMarkerStart = 0xD8, kMarkerEnd = 0xD9, kMarkerScan = 0xDA;
constexpr int kMarkerExif = JPEG_APP0 + 1, kMarkerProfile = JPEG_APP0 + 2;
constexpr unsigned kLongestMarker = 0xFFFF;
constexpr char kExifName[6] = {'E', 'x', 'i', 'f', 0, 0};
/// A marker's length field counts itself (2 bytes) and the name of the EXIF block.
constexpr std::size_t kLongestExif = kLongestMarker - 2 - sizeof kExifName;

/// Libjpeg's failures jump to `jump`; its warnings are dropped.
struct JpegErrors {
    jpeg_error_mgr manager;  // first: libjpeg hands its address back
    std::jmp_buf jump;
    char text[JMSG_LENGTH_MAX] = "";

    JpegErrors() {
        jpeg_std_error(&manager);
        manager.error_exit = [](j_common_ptr info) {
            auto* errors = reinterpret_cast<JpegErrors*>(info->err);
            info->err->format_message(info, errors->text);
            std::longjmp(errors->jump, 1);
        };
        manager.emit_message = [](j_common_ptr, int) {};
        manager.output_message = [](j_common_ptr) {};
    }
};

/// Runs work(); false when libjpeg jumped out of it. Nothing with a destructor may live in `work`.
bool runGuarded(JpegErrors& errors, const std::function<void()>& work) {
    if (setjmp(errors.jump)) return false;
    work();
    return true;
}

/// Steps over scan data from `at` to the next marker that is neither a stuffed byte nor a restart mark.
std::size_t skipScanData(std::span<const unsigned char> file, std::size_t at) {
    while (at + 1 < file.size()) {
        const void* found = std::memchr(file.data() + at, 0xFF, file.size() - at - 1);
        if (!found) return file.size();
        at = static_cast<std::size_t>(static_cast<const unsigned char*>(found) - file.data());
        const unsigned char code = file[at + 1];
        const bool restart = code >= 0xD0 && code <= 0xD7;
        if (code != 0 && code != 0xFF && !restart) return at;
        at += code == 0xFF ? 1 : 2;
    }
    return file.size();
}

/// Whether the markers lead to the end mark. Decoders differ in what they make of a cut file, and some fill
/// the lost part with grey.
bool reachesEnd(std::span<const unsigned char> file) {
    std::size_t at = 2;
    while (at + 1 < file.size()) {
        if (file[at] != 0xFF) return false;
        const int code = file[at + 1];
        if (code == kMarkerEnd) return true;
        if (code == 0xFF) {  // a fill byte
            ++at;
            continue;
        }
        if (at + 3 >= file.size()) return false;
        at += 2 + (std::size_t{file[at + 2]} << 8 | file[at + 3]);
        if (code == kMarkerScan) at = skipScanData(file, at);
    }
    return false;
}

bool isExif(const jpeg_marker_struct& marker) {
    return marker.marker == kMarkerExif && marker.data_length > sizeof kExifName &&
           std::memcmp(marker.data, kExifName, sizeof kExifName) == 0;
}

/// Flattens one row onto white, RGBA to RGB.
void flattenRow(const unsigned char* rgba, std::size_t width, unsigned char* rgb) {
    for (std::size_t x = 0; x < width; ++x, rgba += 4, rgb += 3) {
        const int alpha = rgba[3];
        for (int c = 0; c < 3; ++c)
            rgb[c] = static_cast<unsigned char>((rgba[c] * alpha + 255 * (255 - alpha) + 127) / 255);
    }
}

void startJpeg(jpeg_compress_struct& jpeg, const Image& image) {
    jpeg.image_width = static_cast<JDIMENSION>(image.width);
    jpeg.image_height = static_cast<JDIMENSION>(image.height);
    jpeg.input_components = 3;
    jpeg.in_color_space = JCS_RGB;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, kQuality, TRUE);
    jpeg.comp_info[0].h_samp_factor = jpeg.comp_info[0].v_samp_factor = 1;  // no subsampling
    jpeg.optimize_coding = TRUE;
    const bool exif = !image.exif.empty() && jpegHoldsExif(image.exif.size());
    if (exif) jpeg.write_JFIF_header = FALSE;  // EXIF wants its marker to be the first
    jpeg_start_compress(&jpeg, TRUE);
    if (exif) {
        jpeg_write_m_header(&jpeg, kMarkerExif, static_cast<unsigned>(image.exif.size() + sizeof kExifName));
        for (const char c : kExifName) jpeg_write_m_byte(&jpeg, c);
        for (const unsigned char c : image.exif) jpeg_write_m_byte(&jpeg, c);
    }
    if (!image.iccProfile.empty())
        jpeg_write_icc_profile(&jpeg, image.iccProfile.data(),
                               static_cast<unsigned>(image.iccProfile.size()));
}

}  // namespace

bool isJpeg(std::span<const unsigned char> file) {
    return file.size() >= 3 && file[0] == 0xFF && file[1] == kMarkerStart && file[2] == 0xFF;
}

bool jpegHoldsExif(std::size_t size) {
    return size <= kLongestExif;
}

FileMeta readJpegMeta(std::span<const unsigned char> file) {
    JpegErrors errors;
    jpeg_decompress_struct jpeg{};
    jpeg.err = &errors.manager;
    JOCTET* profile = nullptr;
    unsigned profileSize = 0;
    const bool read = runGuarded(errors, [&] {
        jpeg_create_decompress(&jpeg);
        jpeg_mem_src(&jpeg, file.data(), file.size());
        jpeg_save_markers(&jpeg, kMarkerExif, kLongestMarker);
        jpeg_save_markers(&jpeg, kMarkerProfile, kLongestMarker);
        jpeg_read_header(&jpeg, TRUE);
        jpeg_read_icc_profile(&jpeg, &profile, &profileSize);
    });
    FileMeta meta{
        jpeg.image_width, jpeg.image_height, jpeg.data_precision > 8, jpeg.num_components == 4, {}, {}};
    if (profile) meta.iccProfile.assign(profile, profile + profileSize);
    std::free(profile);
    for (auto* marker = jpeg.marker_list; marker && meta.exif.empty(); marker = marker->next)
        if (isExif(*marker))
            meta.exif.assign(marker->data + sizeof kExifName, marker->data + marker->data_length);
    jpeg_destroy_decompress(&jpeg);
    if (!read) throw Failure(std::string("is not a JPEG file that can be read (") + errors.text + ")");
    if (!reachesEnd(file)) throw Failure("the JPEG file ends early");
    return meta;
}

std::vector<unsigned char> encodeJpeg(const Image& image) {
    JpegErrors errors;
    jpeg_compress_struct jpeg{};
    jpeg.err = &errors.manager;
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    const auto width = static_cast<std::size_t>(image.width);
    std::vector<unsigned char> line(3 * width);
    const bool done = runGuarded(errors, [&] {
        jpeg_create_compress(&jpeg);
        jpeg_mem_dest(&jpeg, &bytes, &size);
        startJpeg(jpeg, image);
        JSAMPROW row = line.data();
        while (jpeg.next_scanline < jpeg.image_height) {
            flattenRow(image.rgba.data() + 4 * width * jpeg.next_scanline, width, line.data());
            jpeg_write_scanlines(&jpeg, &row, 1);
        }
        jpeg_finish_compress(&jpeg);
    });
    jpeg_destroy_compress(&jpeg);
    std::vector<unsigned char> file =
        done ? std::vector<unsigned char>(bytes, bytes + size) : std::vector<unsigned char>();
    std::free(bytes);
    if (!done) throw Failure(std::string("cannot be stored as JPEG (") + errors.text + ")");
    return file;
}

}  // namespace zelcli
