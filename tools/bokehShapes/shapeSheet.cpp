// shapeSheet SHEET.png: each shape through the convolution of a picture of points of light, below its name's
// order in the list of shapes. The last row spins.
#include <png.h>

#include <atomic>
#include <cstdio>
#include <random>

#include "bokeh/cpuTiles.h"
#include "bokeh/spinIndex.h"
#include "shapes.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace {

using zellab::Byte;

constexpr int kWidth = 480, kHeight = 240, kAcross = 2, kRadius = 24;

/// Coloured points on a dark ground that grows lighter downwards.
std::vector<Byte> pointsOfLight() {
    std::vector<Byte> pixels;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x)
            for (const int base : {14, 16, 26}) pixels.push_back(static_cast<Byte>(base + y / 12));
    std::vector<Byte> rgba(std::size_t{4} * kWidth * kHeight, 255);
    for (std::size_t i = 0; i < pixels.size(); ++i) rgba[i / 3 * 4 + i % 3] = pixels[i];
    std::mt19937 random(5);
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 6; ++column) {
            const int x = 40 + 80 * column + static_cast<int>(random() % 13), y = 40 + 80 * row;
            for (int i = 0; i < 9; ++i) {
                Byte* const pixel = rgba.data() + std::ptrdiff_t{4} * ((y + i / 3) * kWidth + x + i % 3);
                pixel[0] = 255;
                pixel[1] = static_cast<Byte>(200 + random() % 50);
                pixel[2] = static_cast<Byte>(120 + random() % 130);
            }
        }
    return rgba;
}

std::vector<Byte> convolved(const zelshapes::Shape& shape, const std::vector<Byte>& rgba) {
    using namespace zellab::Bokeh;
    const std::vector<Byte> strip = zelshapes::drawStrip(shape);
    const std::vector<Byte> radius(rgba.size() / 4, kRadius);
    const zellab::Plane<Byte> spin = spinIndexPlane(kWidth, kHeight);
    ConvolutionSource source;
    source.image = {rgba.data(), kWidth, kHeight};
    source.radius = {radius.data(), kWidth, kHeight};
    source.maximumRadius = kMaxRadius;
    source.kernel = {strip.data(), kStripWidth, kStripHeight};
    if (shape.name == "spin") source.spin = spin.view();
    source.look = lookValues({1.0f, 0.9f, 2.0f, 0.0f});
    std::atomic<int> next{0};
    std::vector<Byte> picture(rgba.size());
    for (const CpuTile& tile : computeTiles(source, next, 2))
        for (int y = 0; y < tile.place.height; ++y)
            std::copy_n(tile.pixels.begin() + std::ptrdiff_t{4} * tile.place.width * y, 4 * tile.place.width,
                        picture.begin() + 4 * (std::ptrdiff_t{tile.place.y + y} * kWidth + tile.place.x));
    return picture;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "Usage: shapeSheet SHEET.png\n");
        return 2;
    }
    const std::vector<Byte> lights = pointsOfLight();
    std::vector<std::vector<Byte>> pictures{lights};
    for (const zelshapes::Shape& shape : zelshapes::shapes()) pictures.push_back(convolved(shape, lights));

    const int rows = static_cast<int>(pictures.size() + kAcross - 1) / kAcross;
    std::vector<Byte> sheet;
    for (int y = 0; y < rows * kHeight; ++y)
        for (int column = 0; column < kAcross; ++column) {
            const std::vector<Byte>& picture =
                pictures[static_cast<std::size_t>(y / kHeight * kAcross + column)];
            const auto row = picture.begin() + std::ptrdiff_t{4} * kWidth * (y % kHeight);
            sheet.insert(sheet.end(), row, row + std::ptrdiff_t{4} * kWidth);
        }
    png_image file{};
    file.version = PNG_IMAGE_VERSION;
    file.width = kAcross * kWidth;
    file.height = static_cast<png_uint_32>(rows * kHeight);
    file.format = PNG_FORMAT_RGBA;
    if (png_image_write_to_file(&file, argv[1], 0, sheet.data(), 0, nullptr)) return 0;
    std::fprintf(stderr, "shapeSheet: %s: %s\n", argv[1], file.message);
    return 1;
}
