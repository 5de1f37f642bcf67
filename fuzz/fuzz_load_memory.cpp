// The loader's memory form.
#include <cstdint>
#include <vector>

#include "loadOptions.h"
#include "zel_effects/zel_effects.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    if (size < zelfuzz::LoadOptions::kBytes) return 0;
    const zelfuzz::LoadOptions options(input);
    // A copy of exactly the file's length: the byte behind it is out of bounds.
    std::vector<unsigned char> file(input + zelfuzz::LoadOptions::kBytes, input + size);
    int width = 0, height = 0, channels = 0;
    unsigned char* pixels = ZelImageCore::StbImageUtil::loadImageFromMemory(
        file.data(), static_cast<int>(file.size()), width, height, channels, options.keepAlpha,
        options.maxSize, false);
    zelfuzz::checkAndFree(pixels, width, height, options);
    return 0;
}
