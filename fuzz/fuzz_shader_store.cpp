// Shader files: any bytes.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "gl/shaderStore.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    zellab::Bokeh::ShaderStore store;
    const bool whole = store.parse({input, input + size});
    std::size_t found = 0;
    // Every key that the index could name is in the bytes themselves.
    for (std::size_t at = 4; at + 12 <= size; at += 12) {
        const std::uint32_t key = input[at] | input[at + 1] << 8 | input[at + 2] << 16 |
                                  static_cast<std::uint32_t>(input[at + 3]) << 24;
        std::shared_ptr<const std::uint8_t> bytes;
        std::size_t length = 0;
        if (!store.get(key, bytes, length)) continue;
        ++found;
        // All of a text may be read; no text is longer than its blocks.
        if (length > size) std::abort();
        if (zellab::Bokeh::decipherShader({bytes.get(), length}).size() > (length + 15) / 16 * 16)
            std::abort();
    }
    if (found < store.size()) std::abort();
    if (whole && size < 4) std::abort();
    return 0;
}
