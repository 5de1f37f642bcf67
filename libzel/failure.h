#pragma once

#include <stdexcept>
#include <string>

#include "zel/zel.h"

namespace zel {

/// A call cannot be done: its status, and why in one line.
class Failure : public std::runtime_error {
public:
    explicit Failure(const std::string& why, zel_status status = ZEL_FAILED)
        : std::runtime_error(why), m_status(status) {}
    zel_status status() const { return m_status; }

private:
    zel_status m_status;
};

/// A file of the data folder, named as it is told below that folder.
inline Failure assetFailure(const std::string& file, const std::string& why) {
    return Failure(file + ": " + why, ZEL_BAD_ASSET);
}

}  // namespace zel
