#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "gl/parameterTable.h"

namespace zellab::Bokeh {

/// The entries of a shader file in memory. The file: a count, then for each entry its key, offset and size
/// (all 32-bit, little-endian), then the enciphered texts.
class ShaderStore {
public:
    /// Reads a file. One that cannot be opened changes nothing.
    /// @return whether the whole file made sense
    bool load(const std::string& path);
    /// The same from memory. Damage ends the reading; entries before it stay.
    bool parse(std::vector<std::uint8_t> file);

    bool contains(std::uint32_t key) const { return m_entries.find(key) != nullptr; }
    /// Gives an entry as it stands in the file. @return false for an unknown key
    bool get(std::uint32_t key, std::shared_ptr<const std::uint8_t>& bytes, std::size_t& size) const;
    std::size_t size() const { return m_entries.size(); }
    void clear() { m_entries.clear(); }

private:
    struct Blob {
        std::size_t size;
        std::shared_ptr<const std::uint8_t> bytes;
    };
    gl::ParameterTable<Blob> m_entries;
};

/// The text of an entry: deciphered, up to its first zero byte.
std::string decipherShader(std::span<const std::uint8_t> bytes);

}  // namespace zellab::Bokeh
