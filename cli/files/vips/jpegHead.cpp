#include "cli/files/vips/jpegHead.h"

#include <array>
#include <csetjmp>
#include <cstdio>  // jpeglib.h wants FILE
#include <iterator>
#include <numeric>

// jpeglib.h must come after the standard headers above
#include <jpeglib.h>

namespace zelcli {

namespace {

/// Libjpeg's failures jump to `jump`; its warnings are dropped.
struct JpegErrors {
    jpeg_error_mgr manager;  // first: libjpeg hands its address back
    std::jmp_buf jump;

    JpegErrors() {
        jpeg_std_error(&manager);
        manager.error_exit = [](j_common_ptr info) {
            std::longjmp(reinterpret_cast<JpegErrors*>(info->err)->jump, 1);
        };
        manager.emit_message = [](j_common_ptr, int) {};
        manager.output_message = [](j_common_ptr) {};
    }
};

int sumOf(const JQUANT_TBL& table) {
    return std::accumulate(std::begin(table.quantval), std::end(table.quantval), 0);
}

/// For each quality the sum of the luma table that the library's own encoder would use.
std::array<int, 101> encoderSums() {
    std::array<int, 101> sums{};
    jpeg_error_mgr errors;
    jpeg_compress_struct jpeg{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    for (int quality = 1; quality <= 100; ++quality) {
        jpeg_set_quality(&jpeg, quality, TRUE);
        sums[static_cast<std::size_t>(quality)] = sumOf(*jpeg.quant_tbl_ptrs[0]);
    }
    jpeg_destroy_compress(&jpeg);
    return sums;
}

/// The lowest quality whose table is as fine as the given one.
int qualityOf(const JQUANT_TBL& table) {
    static const auto sums = encoderSums();
    int quality = 1;
    while (quality < 100 && sums[static_cast<std::size_t>(quality)] > sumOf(table)) ++quality;
    return quality;
}

std::optional<Subsampling> subsamplingOf(const jpeg_decompress_struct& jpeg) {
    if (jpeg.num_components != 3) return std::nullopt;
    const auto& luma = jpeg.comp_info[0];
    if (luma.h_samp_factor == 1 && luma.v_samp_factor == 1) return Subsampling::none;
    if (luma.h_samp_factor == 2 && luma.v_samp_factor == 1) return Subsampling::half;
    if (luma.h_samp_factor == 2 && luma.v_samp_factor == 2) return Subsampling::quarter;
    return std::nullopt;
}

}  // namespace

bool isJpeg(std::span<const unsigned char> file) {
    return file.size() >= 3 && file[0] == 0xFF && file[1] == 0xD8 && file[2] == 0xFF;
}

void readJpegTraits(std::span<const unsigned char> file, Traits& traits) {
    JpegErrors errors;
    jpeg_decompress_struct jpeg{};
    jpeg.err = &errors.manager;
    // Nothing with a destructor may live where libjpeg jumps out.
    if (setjmp(errors.jump) == 0) {
        jpeg_create_decompress(&jpeg);
        jpeg_mem_src(&jpeg, file.data(), file.size());
        jpeg_read_header(&jpeg, TRUE);
        const JQUANT_TBL* table = jpeg.quant_tbl_ptrs[jpeg.comp_info[0].quant_tbl_no & 3];
        if (table) traits.jpegQuality = qualityOf(*table);
        traits.subsampling = subsamplingOf(jpeg);
        traits.progressive = jpeg.progressive_mode != 0;
    }
    jpeg_destroy_decompress(&jpeg);
}

}  // namespace zelcli
