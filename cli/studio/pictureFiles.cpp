#include "cli/studio/pictureFiles.h"

#include "cli/files/writePicture.h"
#include "cli/studio/pixels.h"

namespace zelcli::studio {

LoadedPicture pictureFromBytes(const std::string& bytes) {
    return decodePicture({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()}, {});
}

std::string thumbnailOf(const Image& image, int longestSide) {
    std::vector<std::string> notes;
    const auto bytes =
        encodePicture(reducedTo(image, longestSide), PictureFormat::jpeg, {.strip = true}, notes);
    return {bytes.begin(), bytes.end()};
}

std::vector<std::string> savePicture(const std::filesystem::path& path, const Image& image) {
    const auto format = formatOfSuffix(path.string());
    if (!format || !canWrite(*format)) throw Failure("is of a format that is not written");
    return writePicture(UserPath(path.string()), image, *format, {});
}

}  // namespace zelcli::studio
