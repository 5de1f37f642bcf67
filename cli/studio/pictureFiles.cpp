#include "cli/studio/pictureFiles.h"

#include "cli/failure.h"
#include "cli/files/writePicture.h"
#include "cli/studio/pixels.h"

namespace zelcli::studio {

LoadedPicture pictureFromFile(const std::filesystem::path& path) {
    return readPicture(path);
}

LoadedPicture pictureFromBytes(const std::string& bytes) {
    return decodePicture({reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()}, {});
}

std::string thumbnailOf(const Image& image, int longestSide) {
    std::vector<std::string> notes;
    const auto bytes = encodePicture(reducedTo(image, longestSide), PictureFormat::jpeg, {}, notes);
    return {bytes.begin(), bytes.end()};
}

bool canSave(const std::string& name) {
    const auto format = formatOfSuffix(name);
    return format && canWrite(*format);
}

std::vector<std::string> savePicture(const std::filesystem::path& path, const Image& image) {
    const auto format = formatOfSuffix(path);
    if (!format || !canWrite(*format)) throw Failure(std::string("must end in ") + kOutputSuffixes);
    return writePicture(UserPath(path.string()), image, *format, {});
}

}  // namespace zelcli::studio
