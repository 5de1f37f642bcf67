#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "gimp/run/pixels.h"
#include "zel/zel.hpp"

namespace zelgimp {

/// The library's context of this process, made on first need. Throws libzel::Error.
zel_context* library();

/// Parameters by name, as text; those that are missing have their default.
using ValueTexts = std::map<std::string, std::string>;
libzel::Values valuesOf(const ValueTexts& texts);

/// Told between the stages of a call, on its thread; true cancels.
using Progress = std::function<bool(double fraction01, const char* stage)>;

/// One run of an effect with all that it takes. It touches nothing of the editor, so any thread may make it.
struct EffectCall {
    const zel_effect* effect = nullptr;
    ValueTexts values;
    std::shared_ptr<const Rgba> picture, second;
    std::shared_ptr<const Grey> mask, depth;
    std::shared_ptr<const zel_faces> faces;

    /// The picture as the effect makes it. Throws libzel::Error, of status ZEL_CANCELLED where the progress said so.
    Rgba run(const Progress& progress) const;
};

/// What a failed call says to a user: the library's sentence with a capital and a full stop.
std::string sentenceOf(const std::string& message);

}  // namespace zelgimp
