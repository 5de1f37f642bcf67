#pragma once

#include <libgimp/gimp.h>

#include <string>

#include "gimp/picture/inputPlanes.h"
#include "gimp/picture/targetLayer.h"
#include "gimp/run/effectCall.h"

namespace zelgimp {

/// What a user or a script asks for: an effect, its values, and where its inputs come from.
struct Request {
    const zel_effect* effect = nullptr;
    ValueTexts values;
    Source mask, second, depth;

    /// A selection that is the mask already says where the effect acts; some work a little beyond their mask.
    Blend blend() const {
        return effect->mask != ZEL_NO && mask.kind == Source::kSelection ? Blend::whole
                                                                         : Blend::throughSelection;
    }

    /// Everything at its default; a mask that must be given is the selection.
    static Request of(const zel_effect& effect);
};

/// What the values mean. Throws libzel::Error where one is wrong.
struct Meaning {
    bool usesFaces = false;
    std::string caution;  // what the user may not expect; empty: nothing
};
Meaning meaningOf(const Request& request);

/// The request with its inputs read, but for its faces. `picture` is the layer's. Throws Refusal.
EffectCall callOf(const Request& request, const TargetLayer& layer, std::shared_ptr<const Rgba> picture);

/// Throws Refusal where an effect needs a face and there is none.
void requireFaces(const zel_effect& effect, const zel_faces* faces);

/// A request as texts by name, and back: whatever the texts do not tell stays as it is.
ValueTexts textsOf(const Request& request);
void takeTexts(Request& request, gint32 image, const ValueTexts& texts);

}  // namespace zelgimp
