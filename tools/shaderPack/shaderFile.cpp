#include "shaderFile.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <stdexcept>

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

Shader readLine(const std::string& line, const fs::path& folder) {
    std::istringstream words(line);
    std::string key, name, rest;
    if (!(words >> key >> name) || (words >> rest)) throw std::runtime_error("not a key and a file");
    std::size_t used = 0;
    unsigned long value = 0;
    try {
        value = std::stoul(key, &used, 16);
    } catch (const std::logic_error&) {
        used = 0;
    }
    if (used != key.size() || value == 0 || value > 0xFFFFFFFFul)
        throw std::runtime_error("'" + key + "' is no key");
    Shader shader{static_cast<std::uint32_t>(value), readText(folder / name)};
    if (shader.text.empty()) throw std::runtime_error("'" + name + "' cannot be read or is empty");
    return shader;
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

std::vector<Shader> readKeyList(const std::string& listPath) {
    std::ifstream list(listPath);
    if (!list) throw std::runtime_error(listPath + ": cannot be read");
    std::vector<Shader> shaders;
    std::set<std::uint32_t> keys;
    std::string line;
    for (int number = 1; std::getline(list, line); ++number) {
        line.resize(std::min(line.find('#'), line.size()));
        if (line.find_first_not_of(" \t\r") == std::string::npos) continue;
        try {
            shaders.push_back(readLine(line, fs::path(listPath).parent_path()));
            if (!keys.insert(shaders.back().key).second) throw std::runtime_error("the key comes twice");
        } catch (const std::runtime_error& fault) {
            throw std::runtime_error(listPath + ":" + std::to_string(number) + ": " + fault.what());
        }
    }
    return shaders;
}

}  // namespace shaderpack
