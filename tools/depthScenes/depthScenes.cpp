// Writes pictures with true depth for the training of the depth network:
//   depthScenes people|places|portraits FIRST-SEED COUNT OUT
// OUT gets COUNT records of byte planes, each plane of kSide by kSide pixels; layer.h tells what they hold.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>

#include "layer.h"

int main(int argc, char** argv) {
    using Render = zeldepth::Planes (*)(unsigned);
    const std::pair<const char*, Render> kKinds[] = {{"people", zeldepth::renderPerson},
                                                     {"places", zeldepth::renderPlace},
                                                     {"portraits", zeldepth::renderPortrait}};
    Render render = nullptr;
    for (const auto& [name, function] : kKinds)
        if (argc == 5 && std::strcmp(argv[1], name) == 0) render = function;
    if (render == nullptr) {
        std::fprintf(stderr, "usage: depthScenes people|places|portraits FIRST-SEED COUNT OUT\n");
        return 2;
    }
    const auto first = static_cast<unsigned>(std::strtoul(argv[2], nullptr, 10));
    const auto count = static_cast<unsigned>(std::strtoul(argv[3], nullptr, 10));
    std::ofstream out(argv[4], std::ios::binary);
    for (unsigned i = 0; i < count && out; ++i) {
        const zeldepth::Planes planes = render(first + i);
        out.write(reinterpret_cast<const char*>(planes.bytes().data()),
                  static_cast<std::streamsize>(planes.bytes().size()));
    }
    out.close();
    return out ? 0 : 1;
}
