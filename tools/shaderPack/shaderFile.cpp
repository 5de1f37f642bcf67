#include "shaderFile.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "bokeh/shaderKeys.h"
#include "gl/aes.h"
#include "gl/shaderKey.h"

namespace shaderpack {

namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;

void append(Bytes& bytes, std::size_t value) {
    for (int shift = 0; shift < 32; shift += 8) bytes.push_back(static_cast<std::uint8_t>(value >> shift));
}

std::string readText(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

Bytes packShaders(const std::vector<Shader>& shaders) {
    const zellab::gl::Aes aes(zellab::gl::AesMode::aes128, zellab::gl::kShaderFileKey);
    constexpr std::size_t kCountBytes = 4, kIndexBytes = 12;
    Bytes index, texts;
    append(index, shaders.size());
    for (const Shader& shader : shaders) {
        Bytes text(shader.text.begin(), shader.text.end());
        text.push_back(0);
        const Bytes enciphered = zellab::gl::encipherBlocks(aes, text);
        append(index, shader.key);
        append(index, kCountBytes + kIndexBytes * shaders.size() + texts.size());
        append(index, enciphered.size());
        texts.insert(texts.end(), enciphered.begin(), enciphered.end());
    }
    index.insert(index.end(), texts.begin(), texts.end());
    return index;
}

std::vector<Shader> readPassShaders(const std::string& folder) {
    std::vector<Shader> shaders;
    for (const zellab::Bokeh::PassShader& pass : zellab::Bokeh::kPassShaders) {
        const fs::path path = fs::path(folder) / pass.file;
        shaders.push_back({pass.key, readText(path)});
        if (shaders.back().text.empty())
            throw std::runtime_error(path.string() + ": cannot be read or is empty");
    }
    return shaders;
}

}  // namespace shaderpack
