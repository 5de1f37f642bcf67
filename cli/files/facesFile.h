#pragma once

#include <filesystem>

#include "cli/files/readPicture.h"
#include "zel/zel.hpp"

namespace zelcli {

/// Face data from and to a file of JSON; writing is whole or not at all. Throws Failure.
libzel::Faces readFaces(const std::filesystem::path& path);
void writeFaces(const std::filesystem::path& path, zel_faces* faces);
void writeFaces(const UserPath& path, zel_faces* faces);  // or to standard output

}  // namespace zelcli
