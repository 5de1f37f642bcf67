#include "cli/files/writePicture.h"

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "cli/failure.h"
#include "platform/fileReplacement.h"
#include "platform/standardStreams.h"

namespace zelcli {

namespace fs = std::filesystem;

void writeFileSafely(const fs::path& path, std::span<const unsigned char> bytes) {
    const std::string why = zellab::platform::replaceFile(path, bytes);
    if (!why.empty()) throw Failure(why);
}

void writeText(const fs::path& path, const std::string& text) {
    writeFileSafely(path, {reinterpret_cast<const unsigned char*>(text.data()), text.size()});
}

void writeStandardOutput(std::span<const unsigned char> bytes) {
    if (!zellab::platform::writeStandardOutput(bytes))
        throw Failure(std::string("standard output cannot be written (") + std::strerror(errno) + ")");
}

void writeBytes(const UserPath& path, std::span<const unsigned char> bytes) {
    if (path.isStream())
        writeStandardOutput(bytes);
    else
        writeFileSafely(path.real, bytes);
}

std::vector<std::string> writePicture(const UserPath& path, const Image& image, PictureFormat format,
                                      const SaveOptions& options) {
    std::vector<std::string> notes;
    writeBytes(path, encodePicture(image, format, options, notes));
    return notes;
}

void writePicture(const fs::path& path, const Image& image) {
    const auto format = formatOfSuffix(path);
    if (!format) throw Failure(std::string("has no suffix that names a format (") + kOutputSuffixes + ")");
    std::vector<std::string> notes;
    writeFileSafely(path, encodePicture(image, *format, {}, notes));
}

}  // namespace zelcli
