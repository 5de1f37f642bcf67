#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "cubeLooks.h"
#include "look.h"
#include "overlayTable.h"

/// Writes the style assets that the beauty effects read at run time:
///   style_assets FOLDER   makes FOLDER/style/base/*.bin, and FOLDER/looks/*.cube for the command

namespace {

using namespace zelassets;

/// The look of the retouched portrait: brighter mids, a little depth, skin towards rose.
constexpr Look kPortrait = {
    .lift = 0.030f, .contrast = 0.12f, .warmth = 0.008f, .rose = 0.006f, .saturation = 0.04f, .matte = 0.0f};
/// The same at less than half the strength, for a retouch that asks for next to no tone.
constexpr Look kPortraitLow = {
    .lift = 0.014f, .contrast = 0.05f, .warmth = 0.004f, .rose = 0.002f, .saturation = 0.02f, .matte = 0.0f};
/// An airy look: brighter mids and no yellow. Skin keeps its colour, which a paler look would take from dark
/// skin first, and black stays black but for a trace.
constexpr Look kAiry = {
    .lift = 0.047f, .contrast = 0.03f, .warmth = 0.0f, .rose = 0.009f, .saturation = -0.03f, .matte = 0.004f};

void writeWord(std::ostream& out, std::uint32_t word) {
    for (int shift = 0; shift < 32; shift += 8) out.put(static_cast<char>(word >> shift & 255u));
}

/// An asset is its width and height as little-endian words and then the texels, four bytes each.
void writeAsset(const std::filesystem::path& path, std::uint32_t side,
                const std::vector<unsigned char>& texels) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    writeWord(out, side);
    writeWord(out, side);
    out.write(reinterpret_cast<const char*>(texels.data()), static_cast<std::streamsize>(texels.size()));
    out.close();
    if (!out) throw std::runtime_error(path.string() + " cannot be written");
}

void writeAll(const std::filesystem::path& folder) {
    const std::filesystem::path base = folder / "style" / "base";
    std::filesystem::create_directories(base);
    writeAsset(base / "PSOverlay.bin", 256, overlayTable());
    writeAsset(base / "tone3.bin", 64, lookCube(kPortrait));
    writeAsset(base / "tone3_1.bin", 64, lookCube(kPortraitLow));
    writeAsset(base / "tone4.bin", 64, lookCube(kAiry));
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs("usage: style_assets FOLDER\n", stderr);
        return 2;
    }
    try {
        writeAll(argv[1]);
        writeCubeLooks(std::filesystem::path(argv[1]) / "looks");
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "style_assets: %s\n", error.what());
        return 1;
    }
}
