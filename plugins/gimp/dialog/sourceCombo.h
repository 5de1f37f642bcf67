#pragma once

#include <gtk/gtk.h>

#include <functional>

#include "gimp/picture/inputPlanes.h"
#include "zel/zel.h"

namespace zelgimp {

/// What may stand for an input of an effect.
enum class SourceChoice { mask, second, depth };

/// A list of what the picture has for it: layers, and for a mask the selection and channels too.
/// @param target   the layer that is changed
/// @param changed  told what was chosen
GtkWidget* sourceCombo(SourceChoice choice, zel_need need, gint32 target, const Source& chosen,
                       std::function<void(const Source&)> changed);

}  // namespace zelgimp
