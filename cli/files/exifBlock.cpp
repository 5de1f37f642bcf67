#include "cli/files/exifBlock.h"

#include <cstddef>
#include <cstdint>
#include <optional>

namespace zelcli {

namespace {

constexpr unsigned kTagOrientation = 0x0112, kTagExifDirectory = 0x8769;
constexpr unsigned kTagPixelWidth = 0xA002, kTagPixelHeight = 0xA003;
constexpr unsigned kTypeShort = 3, kTypeLong = 4;
constexpr std::size_t kHeadSize = 8, kEntrySize = 12;

/// Checked access to the numbers of a block in its own byte order. `Byte` may be const.
template <typename Byte>
class TiffView {
public:
    explicit TiffView(std::span<Byte> bytes) : m_bytes(bytes) {
        if (bytes.size() < kHeadSize) return;
        m_little = bytes[0] == 'I' && bytes[1] == 'I';
        const bool big = bytes[0] == 'M' && bytes[1] == 'M';
        m_valid = (m_little || big) && read(2, 2) == 42;
    }

    bool valid() const { return m_valid; }
    bool holds(std::size_t offset, std::size_t count) const {
        return offset <= m_bytes.size() && count <= m_bytes.size() - offset;
    }

    std::uint32_t read(std::size_t offset, std::size_t count) const {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < count; ++i)
            value = value << 8 | m_bytes[offset + (m_little ? count - 1 - i : i)];
        return value;
    }

    void write(std::size_t offset, std::size_t count, std::uint32_t value) const {
        for (std::size_t i = 0; i < count; ++i)
            m_bytes[offset + (m_little ? i : count - 1 - i)] =
                static_cast<unsigned char>(value >> (8 * i) & 0xFF);
    }

private:
    std::span<Byte> m_bytes;
    bool m_little = false, m_valid = false;
};

/// A directory of entries: its offset and their number, both inside the block.
struct Directory {
    std::size_t offset = 0, count = 0;
    std::size_t entry(std::size_t i) const { return offset + 2 + kEntrySize * i; }
    std::size_t nextLink() const { return entry(count); }
};

template <typename Byte>
std::optional<Directory> directoryAt(const TiffView<Byte>& tiff, std::size_t offset) {
    if (!tiff.holds(offset, 2)) return std::nullopt;
    const Directory directory{offset, tiff.read(offset, 2)};
    if (!tiff.holds(offset, 2 + kEntrySize * directory.count)) return std::nullopt;
    return directory;
}

/// Where the value of a tag lies, and how many bytes it has; for single SHORT and LONG values.
struct Field {
    std::size_t offset = 0, size = 0;
};

template <typename Byte>
std::optional<Field> findField(const TiffView<Byte>& tiff, const Directory& directory, unsigned tag) {
    for (std::size_t i = 0; i < directory.count; ++i) {
        const std::size_t entry = directory.entry(i);
        if (tiff.read(entry, 2) != tag) continue;
        const unsigned type = tiff.read(entry + 2, 2);
        if (tiff.read(entry + 4, 4) != 1 || (type != kTypeShort && type != kTypeLong)) return std::nullopt;
        return Field{entry + 8, type == kTypeShort ? 2u : 4u};
    }
    return std::nullopt;
}

}  // namespace

int exifOrientation(std::span<const unsigned char> block) {
    const TiffView<const unsigned char> tiff(block);
    if (!tiff.valid()) return kUprightOrientation;
    const auto directory = directoryAt(tiff, tiff.read(4, 4));
    const auto field = directory ? findField(tiff, *directory, kTagOrientation) : std::nullopt;
    const std::uint32_t value = field ? tiff.read(field->offset, field->size) : 0;
    return value >= 1 && value <= 8 ? static_cast<int>(value) : kUprightOrientation;
}

void adaptExif(std::vector<unsigned char>& block, int width, int height) {
    const TiffView<unsigned char> tiff{std::span<unsigned char>(block)};
    if (!tiff.valid()) return;
    const auto main = directoryAt(tiff, tiff.read(4, 4));
    if (!main) return;
    if (const auto field = findField(tiff, *main, kTagOrientation))
        tiff.write(field->offset, field->size, kUprightOrientation);
    if (tiff.holds(main->nextLink(), 4)) tiff.write(main->nextLink(), 4, 0);

    const auto link = findField(tiff, *main, kTagExifDirectory);
    const auto exif = link ? directoryAt(tiff, tiff.read(link->offset, link->size)) : std::nullopt;
    if (!exif) return;
    if (const auto field = findField(tiff, *exif, kTagPixelWidth))
        tiff.write(field->offset, field->size, static_cast<std::uint32_t>(width));
    if (const auto field = findField(tiff, *exif, kTagPixelHeight))
        tiff.write(field->offset, field->size, static_cast<std::uint32_t>(height));
}

}  // namespace zelcli
