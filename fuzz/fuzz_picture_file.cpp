// Picture files as the command reads them, through every reader that it is configured with, and what they carry on its
// way into each format that is written.
#include <cstdint>
#include <string>
#include <vector>

#include "cli/failure.h"
#include "cli/files/pictureCodec.h"

namespace {

constexpr zelcli::PictureFormat kFormats[] = {zelcli::PictureFormat::png, zelcli::PictureFormat::jpeg,
                                              zelcli::PictureFormat::tiff, zelcli::PictureFormat::webp};

void expect(bool holds) {
    if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    zelcli::ReadOptions options;
    options.mostPixels = 1 << 16;
    try {
        const zelcli::LoadedPicture loaded = zelcli::decodePicture({input, size}, options);
        const zelcli::Image& image = loaded.image;
        expect(image.width > 0 && image.height > 0);
        expect(image.rgba.size() ==
               4 * static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height));
        std::vector<std::string> notes;
        const auto file = zelcli::encodePicture(image, kFormats[size % std::size(kFormats)], {}, notes);
        expect(zelcli::decodePicture(file, {}).image.width == image.width);
    } catch (const zelcli::Failure&) {
        // Most inputs are no pictures.
    }
    return 0;
}
