#pragma once

#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "portrait/faces.h"
#include "portrait/image.h"

/// What an effect of the `zel` command is: a name, its parameters, and a function that calls the library.

namespace zel {

/// Work failed: the text says why in one line, without the file's name (the command adds it).
class Failure : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

enum class ParameterKind { number, integer, toggle, choice, text };

/// One `--set NAME=VALUE`. Names are those of the library's operation.
struct Parameter {
    std::string name;
    ParameterKind kind = ParameterKind::number;
    double minimum = 0, maximum = 0;   // number and integer: accepted range
    std::string defaultValue;          // as typed on the command line; empty: must be given
    std::string help;                  // one line
    std::vector<std::string> choices;  // choice: the accepted words
    bool offFirstPage = false;         // told by the manual alone, not where the effect is introduced
};

/// The values of one run, checked against their Parameter; every parameter has one.
class ParameterValues {
public:
    void set(const std::string& name, const std::string& value) { m_values[name] = value; }
    float number(const std::string& name) const { return std::stof(m_values.at(name)); }
    int integer(const std::string& name) const { return std::stoi(m_values.at(name)); }
    bool toggle(const std::string& name) const { return m_values.at(name) == "true"; }
    const std::string& text(const std::string& name) const { return m_values.at(name); }

private:
    std::map<std::string, std::string> m_values;
};

/// One picture on its way through an effect. The run function changes `image` in place.
struct EffectRun {
    Image& image;
    const FaceSet& faces;  // of this picture; empty where none was given or found
    const Mask* mask;      // --mask, null where not given
    const Image* second;   // --second, null where not given
    const ParameterValues& values;
    std::function<void(const std::string& stage, double done01)> progress;  // never empty
    std::string cube = {};        // --cube as a whole path; empty where not given
    Mask* maskOut = nullptr;      // --mask-out, to be filled; null where not asked for
    const Mask* depth = nullptr;  // --depth, null where not given
    Mask* depthOut = nullptr;     // --depth-out, to be filled; null where not asked for
};

/// What the effect takes beside the picture.
enum class Need { no, optional, required };

struct Effect {
    std::string name;       // kebab case, as on the command line
    std::string operation;  // the exported operation, qualified
    std::string summary;    // one line
    std::vector<Parameter> parameters;
    Need faces = Need::no, mask = Need::no, second = Need::no, cube = Need::no;
    Need depth = Need::no;
    Need maskOut = Need::no, depthOut = Need::no;  // optional: it can give a mask or a depth map back
    /// Whether these values make use of faces; empty: always. Where not, none are searched for.
    std::function<bool(const ParameterValues&)> usesFaces;
    /// What a user who chose these values may not expect, in one line; empty, or an empty text: nothing.
    std::function<std::string(const ParameterValues&)> caution;
    std::string example;                  // one full command line for --help
    std::function<void(EffectRun&)> run;  // throws Failure
};

}  // namespace zel
