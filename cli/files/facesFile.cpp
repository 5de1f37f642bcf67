#include "cli/files/facesFile.h"

#include "cli/failure.h"
#include "cli/files/readPicture.h"
#include "cli/files/writePicture.h"

namespace zelcli {

libzel::Faces readFaces(const std::filesystem::path& path) {
    const auto bytes = readFileBytes(path);
    try {
        return libzel::facesFromJson(std::string(bytes.begin(), bytes.end()));
    } catch (const libzel::Error& error) {
        throw Failure(error.what());
    }
}

void writeFaces(const std::filesystem::path& path, zel_faces* faces) {
    writeText(path, libzel::toJson(faces));
}

void writeFaces(const UserPath& path, zel_faces* faces) {
    const std::string text = libzel::toJson(faces);
    writeBytes(path, {reinterpret_cast<const unsigned char*>(text.data()), text.size()});
}

}  // namespace zelcli
