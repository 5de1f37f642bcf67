#include <algorithm>
#include <limits>
#include <memory>
#include <utility>
#include <vector>

#include "CrossPlateform/platform_win/stb_image_util/alphaFlatten.h"
#include "CrossPlateform/platform_win/stb_image_util/imageBuffer.h"
#include "CrossPlateform/platform_win/stb_image_util/imageScramble.h"
#include "CrossPlateform/platform_win/stb_image_util/sizeLimit.h"
#include "libzel/call.h"
#include "zel_effects/zel_effects.h"

/// A picture that the library decoded, in the loader's own memory.
struct zel_picture {
    zellab::ImageBuffer pixels;
    int width = 0, height = 0;
};

namespace {

using namespace zel;
using ZelImageCore::StbImageUtil;

/// Runs load(width, height, channels) and makes the result a picture.
template <typename Load>
void decode(const zel_decode_options& options, zel_picture*& out, const Load& load) {
    if (options.longest_side < 0) throw badArgument("longest_side is below 0");
    int width = 0, height = 0, channels = 0;
    zellab::ImageBuffer pixels(load(width, height, channels));
    if (!pixels) throw Failure("is not a picture that can be decoded", ZEL_BAD_FILE);
    // The loader tells the size before it was reduced.
    const zellab::ImageSize size = options.longest_side > 0
                                       ? zellab::limitedSize({width, height}, options.longest_side)
                                       : zellab::ImageSize{width, height};
    if (size.width < 1 || size.height < 1)
        throw Failure("has no pixels left at that longest_side", ZEL_BAD_FILE);
    auto picture = std::make_unique<zel_picture>();
    picture->pixels = std::move(pixels);
    picture->width = size.width;
    picture->height = size.height;
    if (options.on_white) {
        const zellab::ImageView view{picture->pixels.get(), size.width, size.height};
        zellab::flattenOntoWhite(view, view);
    }
    out = picture.release();
}

}  // namespace

zel_status zel_decode_file(zel_context* context, const char* path, const zel_decode_options* options,
                           zel_picture** out) {
    return guardedIn(context, [&] {
        given(out, "out") = nullptr;
        const std::string file = &given(path, "path");
        const zel_decode_options told = received(options, "options");
        decode(told, *out, [&](int& width, int& height, int& channels) {
            return StbImageUtil::loadImageFromFile(file, width, height, channels, told.scrambled != 0, true,
                                                   told.longest_side, false, nullptr);
        });
    });
}

zel_status zel_decode_memory(zel_context* context, const void* data, size_t length,
                             const zel_decode_options* options, zel_picture** out) {
    return guardedIn(context, [&] {
        given(out, "out") = nullptr;
        if (!data) throw badArgument("data is null");
        const zel_decode_options told = received(options, "options");
        if (length > static_cast<std::size_t>(std::numeric_limits<int>::max()))
            throw Failure("is larger than two gigabytes", ZEL_BAD_FILE);
        const auto* const bytes = static_cast<const unsigned char*>(data);
        std::vector<unsigned char> file(bytes, bytes + length);
        if (told.scrambled && zellab::hasScrambleHead(file.data(), file.size())) {
            file.erase(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(
                                                        std::min(zellab::kScrambleHeadBytes, file.size())));
            zellab::unscrambleImageData(file.data(), static_cast<std::ptrdiff_t>(file.size()));
        }
        decode(told, *out, [&](int& width, int& height, int& channels) {
            return StbImageUtil::loadImageFromMemory(file.data(), static_cast<int>(file.size()), width,
                                                     height, channels, true, told.longest_side, false);
        });
    });
}

zel_status zel_picture_pixels(zel_picture* picture, zel_pixels* out) {
    return guarded([&] {
        const zel_picture& own = given(picture, "picture");
        given(out, "out") = {own.pixels.get(), own.width, own.height, 0, ZEL_RGBA8, 0};
    });
}

void zel_picture_destroy(zel_picture* picture) {
    delete picture;
}
