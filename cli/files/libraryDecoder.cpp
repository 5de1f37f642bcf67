#include "cli/failure.h"
#include "cli/files/pictureCodec.h"
#include "cli/library.h"

// Only to ask for a picture's size before the library takes memory for its pixels.
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_NO_STDIO
#include <stb/stb_image.h>

namespace zelcli {

void checkSize(std::uint64_t width, std::uint64_t height, const ReadOptions& options) {
    constexpr std::uint64_t kLongestSide = ZEL_LONGEST_SIDE;
    if (width < 1 || height < 1) throw Failure("has no pixels");
    const std::string claim =
        "claims " + std::to_string(width) + " by " + std::to_string(height) + " pixels, ";
    if (width > kLongestSide || height > kLongestSide)
        throw Failure(claim + "more than " + std::to_string(kLongestSide) + " a side");
    if (width * height > options.mostPixels)
        throw Failure(claim + "more than the limit of " + std::to_string(options.mostPixels / 1000000) +
                      " million in all; --max-megapixels lifts it");
}

Image decodeByLibrary(std::span<const unsigned char> file, const ReadOptions& options) {
    int width = 0, height = 0, channels = 0;
    if (!options.scrambled &&
        stbi_info_from_memory(file.data(), static_cast<int>(file.size()), &width, &height, &channels))
        checkSize(static_cast<std::uint64_t>(width), static_cast<std::uint64_t>(height), options);
    auto decode = libzel::sized<zel_decode_options>();
    decode.scrambled = options.scrambled;
    zel_picture* picture = nullptr;
    const zel_status status = zel_decode_memory(library(), file.data(), file.size(), &decode, &picture);
    const libzel::Picture decoded(picture);
    if (status != ZEL_OK) throw Failure(zel_message());
    const zel_pixels pixels = libzel::pixelsOf(picture);
    checkSize(static_cast<std::uint64_t>(pixels.width), static_cast<std::uint64_t>(pixels.height), options);
    return imageOf(pixels);
}

}  // namespace zelcli
