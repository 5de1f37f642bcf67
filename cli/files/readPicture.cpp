#include "cli/files/readPicture.h"

#include <cerrno>
#include <cstring>

#include "platform/fileBytes.h"
#include "platform/standardStreams.h"
#include "zellab/imageproc/core/luma.h"

namespace zelcli {

namespace {

std::vector<unsigned char> readStandardInput() {
    constexpr std::size_t kPiece = std::size_t{1} << 20, kMost = std::size_t{1} << 31;
    std::vector<unsigned char> bytes;
    for (std::size_t filled = 0;;) {
        bytes.resize(filled + kPiece);
        const std::ptrdiff_t count = zellab::platform::readStandardInput(bytes.data() + filled, kPiece);
        if (count < 0) throw Failure(std::strerror(errno));
        filled += static_cast<std::size_t>(count);
        bytes.resize(filled);
        if (count == 0) return bytes;
        if (filled >= kMost) throw Failure("is larger than two gigabytes");
    }
}

LoadedPicture decode(const std::vector<unsigned char>& file, const ReadOptions& options) {
    if (file.empty()) throw Failure("is empty");
    return decodePicture(file, options);
}

}  // namespace

UserPath UserPath::operator/(const std::string& name) const {
    UserPath path;
    path.shown = (zellab::platform::utf8Path(shown) / zellab::platform::utf8Path(name)).string();
    path.real = real / zellab::platform::utf8Path(name);
    return path;
}

std::vector<unsigned char> readFileBytes(const std::filesystem::path& path) {
    auto file = zellab::platform::readFileBytes(path.string().c_str());
    if (!file.bytes) throw Failure(file.why);
    return std::move(*file.bytes);
}

std::vector<unsigned char> readBytesOf(const UserPath& path) {
    return path.isStream() ? readStandardInput() : readFileBytes(path.real);
}

LoadedPicture readPicture(const UserPath& path, const ReadOptions& options) {
    return decode(readBytesOf(path), options);
}

LoadedPicture readPicture(const std::filesystem::path& path, const ReadOptions& options) {
    return decode(readFileBytes(path), options);
}

Mask readMask(const std::filesystem::path& path) {
    const Image image = readPicture(path).image;
    Mask mask{image.width, image.height, {}};
    mask.samples.reserve(image.rgba.size() / 4);
    for (std::size_t i = 0; i < image.rgba.size(); i += 4) {
        const unsigned char* p = image.rgba.data() + i;
        mask.samples.push_back(static_cast<unsigned char>(zellab::lumaOf(p) * p[3] / 255));
    }
    return mask;
}

}  // namespace zelcli
