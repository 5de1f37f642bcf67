#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "libzel/failure.h"
#include "portrait/faces.h"
#include "portrait/image.h"

/// What an effect is: a name, its parameters, and a function that calls the engine. Everything that a host shows or
/// asks is made from this description.

namespace zel {

class DepthPool;

/// Names are those of the engine's operation.
struct Parameter {
    std::string name;
    zel_kind kind = ZEL_NUMBER;
    double minimum = 0, maximum = 0;  // numbers: accepted range; equal: any
    std::string defaultValue;  // as text; empty: must be given, or is a text or file that may be missing
    std::string help;          // one sentence
    std::vector<std::string> choices;  // the accepted words, of a choice or beside a point
    std::string unit = {};             // "pixels"; empty: a plain number
    bool advanced = false;             // told by the manual alone, not where the effect is introduced

    bool mustBeGiven() const { return defaultValue.empty() && kind != ZEL_TEXT && kind != ZEL_FILE; }
};

/// The values of one run, checked against their Parameter; every parameter has one.
class ParameterValues {
public:
    void set(const std::string& name, const std::string& value) { m_values[name] = value; }
    float number(const std::string& name) const { return std::stof(m_values.at(name)); }
    int integer(const std::string& name) const { return std::stoi(m_values.at(name)); }
    bool toggle(const std::string& name) const { return m_values.at(name) == "true"; }
    const std::string& text(const std::string& name) const { return m_values.at(name); }
    /// Empty for a word in place of a point.
    std::optional<std::pair<float, float>> point(const std::string& name) const;

private:
    std::map<std::string, std::string> m_values;
};

/// What the host allows an effect beside its inputs.
struct Surroundings {
    std::string assets;  // folder; empty where there is none
    zel_gl gl = ZEL_GL_IF_THERE;
    DepthPool* depthNetworks = nullptr;  // never null where an effect runs
};

/// One picture on its way through an effect. The run function changes `image` in place.
struct EffectRun {
    Image& image;
    const FaceSet& faces;  // of this picture; empty where none was given
    const Mask* mask;      // null where not given
    const Image* second;   // null where not given
    const ParameterValues& values;
    std::function<void(const std::string& stage, double done01)> progress;  // never empty; throws to cancel
    Mask* maskOut = nullptr;      // to be filled; null where not asked for
    const Mask* depth = nullptr;  // null where not given
    Mask* depthOut = nullptr;     // to be filled; null where not asked for
    Surroundings surroundings = {};
};

struct Effect {
    std::string name;       // kebab case
    std::string title;      // for a menu
    std::string operation;  // the exported operation, qualified
    std::string summary;    // one sentence
    std::string advice;     // when to use it, and what its main settings do at their ends
    std::vector<Parameter> parameters;
    // What it takes beside the picture.
    zel_need faces = ZEL_NO, mask = ZEL_NO, second = ZEL_NO, depth = ZEL_NO;
    zel_need maskOut = ZEL_NO, depthOut = ZEL_NO;  // optional: it can give a mask or a depth map back
    zel_need gl = ZEL_NO;
    /// Whether these values make use of faces; empty: always. Where not, none need be searched for.
    std::function<bool(const ParameterValues&)> usesFaces;
    /// What a user who chose these values may not expect, in one line; empty, or an empty text: nothing.
    std::function<std::string(const ParameterValues&)> caution;
    std::string example;                  // one full command line
    std::function<void(EffectRun&)> run;  // throws Failure
};

}  // namespace zel
