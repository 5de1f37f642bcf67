// Network files: any bytes as a model, of which only the edges of the graph are read.
#include <cstdint>
#include <cstdlib>

#include "inference/onnxHead.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    const auto head = zellab::platform::readOnnxHead({input, size});
    // What is called a model has both edges, and no more of anything than its bytes can tell.
    if (!head) return 0;
    if (head->inputs.empty() || head->outputs.empty()) std::abort();
    std::size_t told = 0;
    for (const auto* values : {&head->inputs, &head->outputs})
        for (const auto& value : *values) {
            told += 1 + value.name.size() + value.dims.size();
            for (const std::int64_t dim : value.dims)
                if (dim < 0) std::abort();
        }
    if (told > size) std::abort();
    return 0;
}
