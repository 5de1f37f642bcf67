#include "gl/shaderCache.h"

#include "gl/builtinVertex.h"

namespace zellab::Bokeh {

namespace {

constexpr const char* kShaderFile = "/shader.3.bin";
constexpr const char* kVersionLine = "#version 330\n";

}  // namespace

bool ShaderCache::load(const std::string& resourceFolder) {
    return m_store.load(resourceFolder + kShaderFile);
}

bool ShaderCache::source(const char* kind, std::uint32_t key, std::string& text) const {
    std::shared_ptr<const std::uint8_t> bytes;
    std::size_t size = 0;
    if (!m_store.get(key, bytes, size)) {
        shaderLog().error("%s shader [%08X] not in cache", kind, key);
        return false;
    }
    text = decipherShader({bytes.get(), size});
    // An entry of no bytes has nothing to decipher.
    if (size == 0) {
        shaderLog().error("fail to get %s shader [%08X]", kind, key);
        return false;
    }
    return true;
}

ShaderProgram ShaderCache::program(std::uint32_t fragmentKey, std::uint32_t vertexKey) {
    const auto known = m_programs.find({vertexKey, fragmentKey});
    if (known != m_programs.end()) return known->second;
    ShaderProgram made = make(fragmentKey, vertexKey);
    m_sound = m_sound && made.isLinked();
    if (made.isValid()) m_programs.emplace(std::pair{vertexKey, fragmentKey}, made);
    return made;
}

ShaderProgram ShaderCache::make(std::uint32_t fragmentKey, std::uint32_t vertexKey) const {
    std::string vertex = kBuiltinVertex, fragment;
    if (vertexKey != 0 && !source("vertex", vertexKey, vertex)) return {};
    if (!source("fragment", fragmentKey, fragment)) return {};
    ShaderProgram made(kVersionLine + vertex, kVersionLine + fragment);
    if (!made.isValid()) shaderLog().error("fail to create program [%08X,%08X]", vertexKey, fragmentKey);
    return made;
}

void ShaderCache::release() {
    m_programs.clear();
    m_sound = true;
    shaderLog().debug("release shader cache");
    m_store.clear();
}

}  // namespace zellab::Bokeh
