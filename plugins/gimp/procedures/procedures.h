#pragma once

#include <libgimp/gimp.h>

namespace zelgimp {

/// Tells the editor of every effect: one procedure each, `plug-in-zel-EFFECT`, and its place in the menus.
void registerProcedures();

/// Runs one of them, as the editor asks for it.
void runProcedure(const gchar* name, gint count, const GimpParam* values, gint* resultCount,
                  GimpParam** results);

}  // namespace zelgimp
