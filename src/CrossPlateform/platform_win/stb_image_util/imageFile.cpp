#include "CrossPlateform/platform_win/stb_image_util/imageFile.h"

#include <climits>
#include <cstdio>
#include <cstring>

#include "platform/fileProbe.h"

namespace zellab {

FileBytes readImageFile(const char* path) {
    const platform::File file = platform::openRegularFile(path);
    const std::optional<std::size_t> length = platform::fileLength(file);
    // The decoder counts in int.
    if (!length || *length >= std::size_t{INT_MAX}) return {};

    const std::size_t size = *length;
    FileBytes bytes{std::unique_ptr<unsigned char[]>(new unsigned char[size + 1]), static_cast<int>(size)};
    const std::size_t got = std::fread(bytes.data.get(), 1, size, file.get());
    std::memset(bytes.data.get() + got, 0, size + 1 - got);
    return bytes;
}

}  // namespace zellab
