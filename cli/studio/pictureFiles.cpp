#include "cli/studio/pictureFiles.h"

#include "cli/files/jpegFile.h"
#include "cli/files/writePicture.h"
#include "cli/studio/guard.h"
#include "cli/studio/pixels.h"
#include "platform/outputSignals.h"

namespace zelcli::studio {

namespace {

namespace fs = std::filesystem;

/// A file of a name that nobody guesses, for as long as the object lives.
class PassingFile {
public:
    explicit PassingFile(const std::string& bytes)
        : m_path(fs::temp_directory_path() / (".zel-" + makeSecret())), m_unfinished(m_path.c_str()) {
        writeFileSafely(m_path, {reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size()});
    }
    ~PassingFile() {
        std::error_code error;
        fs::remove(m_path, error);
    }
    PassingFile(const PassingFile&) = delete;
    PassingFile& operator=(const PassingFile&) = delete;
    const fs::path& path() const { return m_path; }

private:
    fs::path m_path;
    zellab::platform::UnfinishedFile m_unfinished;
};

}  // namespace

const char* const kSavedSuffixes = ".png, .jpg or .jpeg";

LoadedPicture pictureFromFile(const fs::path& path) {
    return readPicture(path, false);
}

LoadedPicture pictureFromBytes(const std::string& bytes) {
    const PassingFile file(bytes);
    return pictureFromFile(file.path());
}

std::string thumbnailOf(const Image& image, int longestSide) {
    const auto bytes = encodeJpeg(reducedTo(image, longestSide));
    return {bytes.begin(), bytes.end()};
}

bool canSave(const std::string& name) {
    return formatOfSuffix(name).has_value();
}

std::vector<std::string> savePicture(const std::filesystem::path& path, const Image& image) {
    std::vector<std::string> notes;
    if (formatOfSuffix(path) == PictureFormat::jpeg && !jpegHoldsExif(image.exif.size()))
        notes.emplace_back("its EXIF data is too large for JPEG and is left out");
    writePicture(path, image);
    return notes;
}

}  // namespace zelcli::studio
