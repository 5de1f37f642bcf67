// bokehShapes FOLDER: writes the kernel strips defocus_NAME.png.
#include <png.h>

#include <cstdio>
#include <filesystem>

#include "bokeh/kernelStrip.h"
#include "shapes.h"

namespace {

bool writeStrip(const std::filesystem::path& file, const std::vector<unsigned char>& strip) {
    png_image picture{};
    picture.version = PNG_IMAGE_VERSION;
    picture.width = zellab::Bokeh::kStripWidth;
    picture.height = zellab::Bokeh::kStripHeight;
    picture.format = PNG_FORMAT_GRAY;
    if (png_image_write_to_file(&picture, file.c_str(), 0, strip.data(), 0, nullptr)) return true;
    std::fprintf(stderr, "bokehShapes: %s: %s\n", file.c_str(), picture.message);
    return false;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "Usage: bokehShapes FOLDER\n");
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    for (const zelshapes::Shape& shape : zelshapes::shapes())
        if (!writeStrip(folder / ("defocus_" + shape.name + ".png"), zelshapes::drawStrip(shape))) return 1;
    return 0;
}
