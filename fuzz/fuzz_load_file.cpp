// The loader's file form, plain and scrambled. For scrambled input the picture is scrambled here, so that
// mutations of it reach the decoder; "rawFile" hands over the bytes as they are, head included.
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <vector>

#include "CrossPlateform/platform_win/stb_image_util/imageScramble.h"
#include "loadOptions.h"
#include "zel_effects/zel_effects.h"

namespace {

/// A file that lives in memory and has a path.
class MemoryFile {
public:
    explicit MemoryFile(const std::vector<unsigned char>& bytes) : m_descriptor(memfd_create("input", 0)) {
        if (write(m_descriptor, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
            std::abort();
    }
    ~MemoryFile() { close(m_descriptor); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(m_descriptor); }

private:
    int m_descriptor;
};

std::vector<unsigned char> scrambled(const std::vector<unsigned char>& file) {
    std::vector<unsigned char> whole(zellab::kScrambleHeadBytes);
    for (std::size_t i = 0; i < whole.size(); ++i)
        whole[i] = static_cast<unsigned char>(file.size() >> (8 * i));
    whole.insert(whole.end(), file.begin(), file.end());
    zellab::unscrambleImageData(whole.data() + zellab::kScrambleHeadBytes,
                                static_cast<std::ptrdiff_t>(file.size()));
    return whole;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    if (size < zelfuzz::LoadOptions::kBytes) return 0;
    const zelfuzz::LoadOptions options(input);
    std::vector<unsigned char> bytes(input + zelfuzz::LoadOptions::kBytes, input + size);
    if (options.scrambled && !options.rawFile) bytes = scrambled(bytes);
    const MemoryFile file(bytes);
    int width = 0, height = 0, channels = 0;
    unsigned char* pixels =
        ZelImageCore::StbImageUtil::loadImageFromFile(file.path(), width, height, channels, options.scrambled,
                                                      options.keepAlpha, options.maxSize, false, nullptr);
    zelfuzz::checkAndFree(pixels, width, height, options);
    return 0;
}
