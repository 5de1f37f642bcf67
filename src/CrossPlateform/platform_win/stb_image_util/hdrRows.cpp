#include "CrossPlateform/platform_win/stb_image_util/hdrRows.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>

namespace zellab {

namespace {

constexpr std::size_t kTexelBytes = 4;  // red, green, blue and their exponent

/// Rows of other widths are never packed.
constexpr std::uint64_t kLeastPacked = 8, kMostPacked = 32767;

/// What is left of a file, read in the decoder's ways.
class Rest {
public:
    Rest(const unsigned char* data, std::size_t size) : m_bytes(data, size) {}

    std::size_t size() const { return m_bytes.size(); }
    const unsigned char* data() const { return m_bytes.data(); }

    /// False where fewer bytes are left.
    bool skip(std::uint64_t count) {
        if (count > m_bytes.size()) return false;
        m_bytes = m_bytes.subspan(static_cast<std::size_t>(count));
        return true;
    }

    /// The next line without its end, as a C text: up to its first zero byte, and no longer than the decoder
    /// looks.
    std::string nextLine() {
        constexpr std::size_t kLongest = 1023;
        const std::string_view all(reinterpret_cast<const char*>(m_bytes.data()), m_bytes.size());
        const std::size_t end = std::min(all.find('\n'), all.size());
        const std::string line(all.substr(0, std::min(end, kLongest)));
        skip(std::min(end + 1, all.size()));
        return line.substr(0, line.find('\0'));
    }

private:
    std::span<const unsigned char> m_bytes;
};

struct Size {
    int width = 0, height = 0;
};

/// "-Y HEIGHT +X WIDTH", the only order of rows and columns that the decoder knows.
bool readSize(const std::string& line, Size& size) {
    if (!line.starts_with("-Y ")) return false;
    char* rest = nullptr;
    size.height = static_cast<int>(std::strtol(line.c_str() + 3, &rest, 10));
    while (*rest == ' ') ++rest;
    if (!std::string_view(rest).starts_with("+X ")) return false;
    size.width = static_cast<int>(std::strtol(rest + 3, nullptr, 10));
    return size.width >= 0 && size.height >= 0;
}

/// One of the four channels of a packed row: runs (128 and their length, then the value) and plain stretches
/// (their length, then the values).
bool skipChannel(Rest& rest, std::size_t width) {
    for (std::size_t done = 0; done < width;) {
        if (rest.size() == 0) return false;
        const std::size_t count = *rest.data(), length = count > 128 ? count - 128 : count;
        if (length > width - done || !rest.skip(count > 128 ? 2 : 1 + count)) return false;
        done += length;
    }
    return true;
}

/// Whether a row is packed, which its first four bytes tell.
bool startsPackedRow(const Rest& rest) {
    return rest.size() >= kTexelBytes && rest.data()[0] == 2 && rest.data()[1] == 2 && rest.data()[2] < 128;
}

}  // namespace

bool hasWholeHdrRows(const unsigned char* data, std::size_t size) {
    Rest rest(data, size);
    const std::string signature = rest.nextLine();
    if (signature != "#?RADIANCE" && signature != "#?RGBE") return true;
    while (!rest.nextLine().empty()) {
    }
    Size picture;
    if (!readSize(rest.nextLine(), picture)) return false;

    const auto width = static_cast<std::uint64_t>(picture.width);
    const auto height = static_cast<std::uint64_t>(picture.height);
    const bool mayBePacked = width >= kLeastPacked && width <= kMostPacked;
    for (std::uint64_t y = 0; mayBePacked && y < height; ++y) {
        // Where one row is not packed, the decoder takes all that follows for the whole picture, unpacked.
        if (!startsPackedRow(rest)) break;
        const std::size_t told = static_cast<std::size_t>(rest.data()[2]) << 8 | rest.data()[3];
        if (told != width || !rest.skip(kTexelBytes)) return false;
        for (int channel = 0; channel < 4; ++channel)
            if (!skipChannel(rest, told)) return false;
        if (y + 1 == height) return true;
    }
    return height == 0 || width == 0 || rest.size() / kTexelBytes / width >= height;
}

}  // namespace zellab
