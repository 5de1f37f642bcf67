#include "gimp/dialog/portraitDialog.h"
namespace zelgimp {
bool runDialog(const TargetLayer&, const zel_effect*) {
    return false;
}
}  // namespace zelgimp
