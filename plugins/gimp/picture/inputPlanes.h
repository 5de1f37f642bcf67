#pragma once

#include <libgimp/gimp.h>

#include <memory>
#include <string>

#include "gimp/run/pixels.h"

namespace zelgimp {

class TargetLayer;

/// Where a mask, a second picture or a depth map comes from.
struct Source {
    enum Kind { kNone, kSelection, kDrawable };
    Kind kind = kNone;
    gint32 drawable = -1;

    bool operator==(const Source&) const = default;
};

/// The source of a drawable that a script names: none below 0; the selection's own channel means the selection.
Source sourceOf(gint32 image, gint32 drawable);

/// A source as text that still means the same in a later session: "selection", "layer:NAME", "channel:NAME".
std::string textOf(const Source& source);
/// None where the picture has nothing of that name.
Source sourceFromText(gint32 image, const std::string& text);

/// The part of a source that lies over the layer. Throws Refusal where it cannot be read.
/// A mask is 0 where its source has nothing, a second picture transparent; a depth map goes on as at its edge.
std::shared_ptr<const Grey> readMask(const TargetLayer& layer, const Source& source);
std::shared_ptr<const Grey> readDepth(const TargetLayer& layer, const Source& source);
std::shared_ptr<const Rgba> readSecond(const TargetLayer& layer, const Source& source);

}  // namespace zelgimp
