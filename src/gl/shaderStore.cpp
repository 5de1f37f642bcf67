#include "gl/shaderStore.h"

#include <utility>

#include "gl/aes.h"
#include "gl/shaderKey.h"
#include "platform/fileProbe.h"

namespace zellab::Bokeh {

namespace {

constexpr std::size_t kCountBytes = 4;
/// Key, offset and size.
constexpr std::size_t kIndexBytes = 12;

std::uint32_t word(const std::vector<std::uint8_t>& file, std::size_t at) {
    return static_cast<std::uint32_t>(file[at]) | static_cast<std::uint32_t>(file[at + 1]) << 8 |
           static_cast<std::uint32_t>(file[at + 2]) << 16 | static_cast<std::uint32_t>(file[at + 3]) << 24;
}

}  // namespace

bool ShaderStore::load(const std::string& path) {
    constexpr std::size_t kLargestFile = std::size_t{1} << 30;  // bytes
    auto file = platform::readRegularFile(path.c_str(), kLargestFile);
    return file && parse(std::move(*file));
}

bool ShaderStore::parse(std::vector<std::uint8_t> file) {
    m_entries.clear();
    if (file.size() < kCountBytes) return false;
    // Entries share the file's bytes, so that many that overlap cost no more than the file.
    const auto bytes = std::make_shared<const std::vector<std::uint8_t>>(std::move(file));
    const auto count = static_cast<std::int32_t>(word(*bytes, 0));
    for (std::int32_t i = 0; i < count; ++i) {
        const std::size_t at = kCountBytes + kIndexBytes * static_cast<std::size_t>(i);
        // An index that runs past the end of the file is damage like a text that does.
        if (at + kIndexBytes > bytes->size()) return false;
        const std::size_t offset = word(*bytes, at + 4), size = word(*bytes, at + 8);
        if (offset + size > bytes->size()) return false;
        m_entries.set(word(*bytes, at), {size, {bytes, bytes->data() + offset}});
    }
    return true;
}

bool ShaderStore::get(std::uint32_t key, std::shared_ptr<const std::uint8_t>& bytes,
                      std::size_t& size) const {
    const Blob* blob = m_entries.find(key);
    if (!blob) return false;
    bytes = blob->bytes;
    size = blob->size;
    return true;
}

std::string decipherShader(std::span<const std::uint8_t> bytes) {
    const gl::Aes aes(gl::AesMode::aes128, gl::kShaderFileKey);
    const std::vector<std::uint8_t> text = gl::decipherBlocks(aes, bytes);
    std::string source(text.begin(), text.end());
    // A text that fills its blocks has no zero byte; it ends with them.
    return source.substr(0, source.find('\0'));
}

}  // namespace zellab::Bokeh
