#pragma once

#include <string>

namespace zellab::platform {

/// The folder of the file, shared library or program, that holds an address; no slash at its end. Empty where
/// the system cannot tell.
std::string folderOfCode(const void* address);

}  // namespace zellab::platform
