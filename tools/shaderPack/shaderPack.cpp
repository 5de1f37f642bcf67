// Packs and enciphers the fragment shaders of the defocus passes.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

#include "shaderFile.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: shaderPack FOLDER SHADERFILE\n");
        return 2;
    }
    try {
        const auto bytes = shaderpack::packShaders(shaderpack::readPassShaders(argv[1]));
        std::filesystem::create_directories(std::filesystem::path(argv[2]).parent_path());
        std::ofstream file(argv[2], std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        file.close();
        if (file) return 0;
        std::fprintf(stderr, "shaderPack: %s cannot be written\n", argv[2]);
    } catch (const std::exception& fault) {
        std::fprintf(stderr, "shaderPack: %s\n", fault.what());
    }
    return 1;
}
