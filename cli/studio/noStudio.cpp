#include "cli/failure.h"
#include "cli/studio/studioCommand.h"

namespace zelcli {

int runStudio(const StudioOptions&) {
    throw Failure("this program was built without the studio");
}

}  // namespace zelcli
