#pragma once

#include <string>
#include <vector>

#include "cli/files/readPicture.h"

namespace zelcli {

/// What the user typed for `zel apply`.
struct ApplyOptions {
    std::string effect;
    std::vector<std::string> inputs;
    std::string output;
    std::vector<std::string> assignments;          // --set
    std::string faces, mask, second, cube, depth;  // empty: not given
    std::string compare, maskOut, depthOut;        // likewise
    const char* maskOutName = "--mask-out";        // the option that tells maskOut
    std::string assets;
    unsigned jobs = 1;
    bool quiet = false, verbose = false, scrambled = false;
};

/// One input with everything that belongs to it.
struct ApplyItem {
    UserPath input, output;
    UserPath sheet;     // shown empty: none
    UserPath faces;     // likewise
    UserPath maskOut;   // likewise
    UserPath depthOut;  // likewise
};

struct ApplyPlan {
    std::vector<ApplyItem> items;
    std::vector<UserPath> folders;  // to be made where they are missing
};

/// Finds the output of every input. OUT is a file for one input. It is a folder, made where it is missing,
/// for several inputs, where it exists as one, or where it ends in a slash; each output there has its input's
/// name, with .png in place of a suffix that is neither PNG nor JPEG. --compare follows the same rule with
/// NAME-sheet.png, --mask-out with NAME-mask.png and --depth-out with NAME-depth.png, and --faces may be a
/// folder with NAME.json. Throws UsageError where two inputs would share an output, or a suffix names no
/// format.
ApplyPlan planApply(const ApplyOptions& options);

}  // namespace zelcli
