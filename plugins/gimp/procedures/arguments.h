#pragma once

#include <libgimp/gimp.h>

#include <deque>
#include <string>
#include <vector>

#include "gimp/run/request.h"

namespace zelgimp {

/// The arguments of an effect's procedure: run mode, picture and layer as ever, then what the effect takes (a file of
/// faces, a mask, a second layer, a depth map), then its parameters, each with the type of its kind.
class Arguments {
public:
    explicit Arguments(const zel_effect& effect);

    const GimpParamDef* definitions() const { return m_definitions.data(); }
    int count() const { return static_cast<int>(m_definitions.size()); }

private:
    void add(GimpPDBArgType type, const std::string& name, const std::string& help);
    void addParameter(const zel_parameter& parameter);

    std::deque<std::string> m_texts;  // they stay where they are
    std::vector<GimpParamDef> m_definitions;
};

/// What a script asks for.
struct ScriptRequest {
    Request request;
    std::string facesFile;  // empty: the picture's own
};

/// @param values  all arguments of the procedure, as the definitions tell
ScriptRequest scriptRequest(const zel_effect& effect, const GimpParam* values);

}  // namespace zelgimp
