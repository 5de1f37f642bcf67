// Style assets: any bytes as a file, any number of bytes a pixel (byte 0 of the input).
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>

#include "readAll.h"
#include "zellab/utils/zelFileUtils.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    if (size < 1) return 0;
    const int channels = input[0] % 6;
    const int file = memfd_create("asset", 0);
    if (write(file, input + 1, size - 1) != static_cast<ssize_t>(size - 1)) std::abort();
    int width = -1, height = -1;
    const std::string path = "/proc/self/fd/" + std::to_string(file);
    unsigned char* pixels = zellab::ZelFileUtils::LoadPPM(path.c_str(), &width, &height, channels);
    close(file);
    if (pixels) {
        // A buffer comes with a size, and all of it may be read.
        if (width < 1 || height < 1 || channels < 1) std::abort();
        zelfuzz::readAll(pixels, static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                                     static_cast<std::size_t>(channels));
    }
    std::free(pixels);
    return 0;
}
