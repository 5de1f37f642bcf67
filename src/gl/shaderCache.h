#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "gl/shaderProgram.h"
#include "gl/shaderStore.h"

namespace zellab::Bokeh {

/// The programs of a scene, compiled when they are first asked for. For the thread with the context.
class ShaderCache {
public:
    /// @param resourceFolder  the folder of the shader file, without a slash at its end
    /// @return whether the whole file was read
    bool load(const std::string& resourceFolder);
    /// The program of a fragment shader, and of a vertex shader or the built-in one for key 0. Empty with a
    /// line in the log where a shader is missing; a request that failed is tried anew the next time.
    ShaderProgram program(std::uint32_t fragmentKey, std::uint32_t vertexKey = 0);
    /// Whether every program that was asked for so far is there and linked.
    bool isSound() const { return m_sound; }
    /// Drops all programs and entries.
    void release();

    const ShaderStore& store() const { return m_store; }
    std::size_t programCount() const { return m_programs.size(); }

private:
    ShaderProgram make(std::uint32_t fragmentKey, std::uint32_t vertexKey) const;
    bool source(const char* kind, std::uint32_t key, std::string& text) const;

    bool m_sound = true;
    ShaderStore m_store;
    std::map<std::pair<std::uint32_t, std::uint32_t>, ShaderProgram> m_programs;
};

}  // namespace zellab::Bokeh
