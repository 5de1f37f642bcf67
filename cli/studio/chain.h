#pragma once

#include <string>
#include <utility>
#include <vector>

#include "cli/studio/message.h"
#include "zel/zel.hpp"

namespace zelcli::studio {

/// One effect with its values, and what the page adds to it.
struct Step {
    const zel_effect* effect = nullptr;
    std::vector<std::pair<std::string, std::string>> values;
    bool off = false;
    double strength = 1;      // share of the effect over what it was given
    std::string mask, depth;  // names of planes; empty: none
    std::string second;       // a picture of the folder; empty: none
    std::string key;          // tells it from every other step
};

/// Null where the effect has no such parameter.
const zel_parameter* parameterOf(const zel_effect& effect, const std::string& name);

struct Chain {
    std::vector<Step> steps;
    std::string faces;  // face data as JSON; empty: those that are found
};

/// {"steps": [{"effect", "values": {NAME: TEXT}, "off", "strength", "mask", "depth", "second"}], "faces"}; all but
/// the effect may be missing. Throws Refused.
Chain parseChain(const Json& json);

/// The chain without what belongs to one picture: faces, masks, maps, points, and steps that are nothing without
/// them. `left` gets the titles of those steps.
Chain chainForAnyPicture(const Chain& chain, std::vector<std::string>& left);

/// What keeps the step from being run: a value that must be given, a mask not yet painted. Empty: nothing.
std::string whatLacks(const Step& step);

}  // namespace zelcli::studio
