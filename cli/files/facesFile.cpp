#include "facesJson.h"
#include "pictures/readPicture.h"
#include "pictures/writePicture.h"

namespace zel {

FaceSet readFaces(const std::filesystem::path& path) {
    const auto bytes = readFileBytes(path);
    return parseFaces(std::string(bytes.begin(), bytes.end()));
}

void writeFaces(const std::filesystem::path& path, const FaceSet& set) {
    writeText(path, formatFaces(set));
}

}  // namespace zel
