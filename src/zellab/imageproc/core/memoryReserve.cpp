#include "zellab/imageproc/core/memoryReserve.h"

#include <cstdlib>
#include <new>

namespace zellab {

void requireMemory(std::size_t bytes) {
    void* volatile block = std::malloc(bytes);  // volatile: the pair of calls must not be optimised away
    if (!block) throw std::bad_alloc();
    std::free(block);
}

}  // namespace zellab
