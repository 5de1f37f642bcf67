#include "libzel/effectChecks.h"

namespace zel {

namespace {

std::string sizeText(int width, int height) {
    return std::to_string(width) + " by " + std::to_string(height);
}

/// `what` is "the mask" or "the second picture".
template <typename Picture>
const Picture& ofPictureSize(const Picture* picture, const Image& image, const char* what) {
    if (!picture) throw Failure(std::string(what) + " is missing", ZEL_MISSING_INPUT);
    if (picture->width != image.width || picture->height != image.height)
        throw Failure(std::string(what) + " is " + sizeText(picture->width, picture->height) +
                          " pixels, the picture " + sizeText(image.width, image.height),
                      ZEL_BAD_ARGUMENT);
    return *picture;
}

}  // namespace

const Mask& maskOfPictureSize(const EffectRun& run) {
    return ofPictureSize(run.mask, run.image, "the mask");
}

const Image& secondOfPictureSize(const EffectRun& run) {
    return ofPictureSize(run.second, run.image, "the second picture");
}

const Face& faceAt(const EffectRun& run, int index) {
    const std::size_t count = run.faces.faces.size();
    if (index < 0 || static_cast<std::size_t>(index) >= count)
        throw Failure("there is no face " + std::to_string(index) + " (the face data holds " +
                          std::to_string(count) + ", counted from 0)",
                      ZEL_MISSING_INPUT);
    return run.faces.faces[static_cast<std::size_t>(index)];
}

}  // namespace zel
