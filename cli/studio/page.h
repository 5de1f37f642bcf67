#pragma once

#include <string_view>

namespace zelcli::studio {

/// One file of the page, as the build put it into the program.
struct PageFile {
    std::string_view name, type, bytes;
};

/// Null where the page has none of that name. "" is the page itself.
const PageFile* findPageFile(std::string_view name);

}  // namespace zelcli::studio
