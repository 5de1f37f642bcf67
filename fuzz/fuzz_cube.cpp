// Colour lookups (.cube): any text is a table or refused with a reason, and every table gives the library's picture.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

#include "libzel/cube/cubeFile.h"
#include "libzel/failure.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    std::istringstream text(std::string(reinterpret_cast<const char*>(input), size));
    try {
        const zel::CubeFile cube = zel::readCube(text);
        const auto side = static_cast<std::size_t>(cube.size);
        if (cube.size < 2 || cube.size > 256 || cube.samples.size() != 3 * side * side * side) std::abort();
        for (const float sample : cube.samples)
            if (!std::isfinite(sample)) std::abort();
        if (zel::cubePicture(cube).size() != 64 * 64 * 4) std::abort();
    } catch (const zel::Failure& failure) {
        if (!*failure.what()) std::abort();
    }
    return 0;
}
