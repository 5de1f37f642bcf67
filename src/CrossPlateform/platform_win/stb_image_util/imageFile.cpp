#include "CrossPlateform/platform_win/stb_image_util/imageFile.h"

#include <climits>
#include <cstdio>
#include <cstring>

#include "platform/fileProbe.h"

namespace zellab {

FileBytes readImageFile(const char* path) {
    const platform::File file = platform::openRegularFile(path);
    if (!file || std::fseek(file.get(), 0, SEEK_END) != 0) return {};
    const long length = std::ftell(file.get());
    // The decoder counts in int.
    if (length < 0 || length >= INT_MAX || std::fseek(file.get(), 0, SEEK_SET) != 0) return {};

    const auto size = static_cast<std::size_t>(length);
    FileBytes bytes{std::unique_ptr<unsigned char[]>(new unsigned char[size + 1]), static_cast<int>(length)};
    const std::size_t got = std::fread(bytes.data.get(), 1, size, file.get());
    std::memset(bytes.data.get() + got, 0, size + 1 - got);
    return bytes;
}

}  // namespace zellab
