#include "zellab/imageproc/sfdsp/yuvLuma.h"

#include <libyuv/convert_argb.h>
#include <libyuv/convert_from_argb.h>

#include <vector>

#include "zellab/imageproc/core/parallelRows.h"

namespace zellab {

void readYuvLuma(ConstImageView image, PlaneView<Byte> luma) {
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            libyuv::ARGBToI400(image.row(y), image.width * 4, luma.row(y), image.width, image.width, 1);
    });
}

void replaceYuvLuma(ImageView image, PlaneView<const Byte> luma) {
    parallelRows(image.height, [&](int begin, int end) {
        const int width = image.width;
        const auto length = static_cast<std::size_t>(width);
        std::vector<Byte> chroma(3 * length);  // U, V, and the Y that is not wanted
        Byte *u = chroma.data(), *v = u + length, *unused = v + length;
        for (int y = begin; y < end; ++y) {
            Byte* row = image.row(y);
            libyuv::ARGBToI444(row, width * 4, unused, width, u, width, v, width, width, 1);
            libyuv::I444ToARGB(luma.row(y), width, u, width, v, width, row, width * 4, width, 1);
        }
    });
}

}  // namespace zellab
