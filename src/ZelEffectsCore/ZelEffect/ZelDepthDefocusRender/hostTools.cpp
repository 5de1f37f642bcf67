// Small services of the render for its host: noise and whole files, in buffers that the host frees.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>

#include "frame/zel_log.h"
#include "platform/fileProbe.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/core/imageView.h"

namespace DefocusCore {

unsigned char* ZelDepthDefocusRender::createNoise(int& width, int& height) {
    const std::size_t count = zellab::sampleCount(width, height);
    auto* noise = static_cast<unsigned char*>(std::malloc(count > 0 ? 4 * count : 1));
    if (!noise) return nullptr;
    for (unsigned char *pixel = noise, *end = noise + 4 * count; pixel != end; pixel += 4) {
        for (int c = 0; c < 3; ++c) pixel[c] = static_cast<unsigned char>(std::rand() % 256);
        pixel[3] = 0;
    }
    return noise;
}

char* ZelDepthDefocusRender::ReadFile2String(const char* path, unsigned long& size) {
    if (!path) {
        ZEL_LOG_ERROR("ZelDepthDefocusRender::IO::ReadFile2String: Path is nullptr !");
        return nullptr;
    }
    const zellab::platform::File file = zellab::platform::openRegularFile(path);
    const std::optional<std::size_t> length = zellab::platform::fileLength(file);
    if (!length) {
        ZEL_LOG_ERROR("ZelDepthDefocusRender::IO::ReadFile2String: Could not open file %s !", path);
        return nullptr;
    }
    auto* const text = static_cast<char*>(std::malloc(*length + 1));
    if (!text) return nullptr;
    // A file that shrank meanwhile ends in zeros.
    const std::size_t read = std::fread(text, 1, *length, file.get());
    std::fill(text + read, text + *length + 1, '\0');
    size = *length;
    return text;
}

}  // namespace DefocusCore
