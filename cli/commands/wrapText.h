#pragma once

#include <string>

namespace zelcli {

/// Breaks the lines of a text at blanks so that none is longer than a terminal of 80 columns. Lines that
/// begin with a blank are commands and lists: they stay as they are.
std::string wrapText(const std::string& text);

}  // namespace zelcli
