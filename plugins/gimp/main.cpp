#include <libgimp/gimp.h>

#include "gimp/procedures/procedures.h"

/// Portrait effects in the editor: every effect of the library as a procedure, and one dialog for all.

const GimpPlugInInfo PLUG_IN_INFO = {nullptr, nullptr, zelgimp::registerProcedures, zelgimp::runProcedure};

MAIN()
