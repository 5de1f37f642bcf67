#pragma once

#include <string>
#include <string_view>

/// The system counts in UTF-16; everything above this folder in UTF-8.

namespace zellab::platform {

std::wstring wideText(std::string_view utf8);
std::string utf8Text(std::wstring_view wide);

/// What the system says about the failure that it has just reported on this thread, without a full stop.
std::string lastErrorText();

}  // namespace zellab::platform
