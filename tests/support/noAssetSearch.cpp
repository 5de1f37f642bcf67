// Effects under test find assets in the working directory and nowhere else, so that a test can take them away.
#include <cstdlib>

namespace {

[[maybe_unused]] const int kSearchIsOff = setenv("ZEL_ASSETS", "", 1);

}  // namespace
