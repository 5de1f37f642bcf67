#pragma once

#include <string>
#include <vector>

#include "cli/files/pictureCodec.h"

namespace zelcli {

/// One effect of a chain with what belongs to it.
struct StepOptions {
    std::string effect;
    std::vector<std::string> assignments;   // --set
    std::string mask, second, cube, depth;  // empty: not given
    std::string maskOut, depthOut;          // likewise
};

/// What becomes of a picture without a face where an effect needs one.
enum class NoFace { fail, skip, copy };

/// What the user typed for `zel apply`.
struct ApplyOptions {
    std::vector<StepOptions> steps;
    std::string recipe, saveRecipe;  // empty: not given
    std::vector<std::string> inputs;
    std::string output;                           // empty: not given
    std::string suffix, format, compare, report;  // likewise
    std::string faces;                            // likewise
    const char* maskOutName = "--mask-out";       // the option that tells the steps' maskOut
    std::string face = "all";                     // "largest", or a number from 1 on
    NoFace noFace = NoFace::fail;
    SaveOptions save;
    ReadOptions read;
    std::string assets;
    unsigned jobs = 0;  // 0: as many as this machine does well
    bool recursive = false, noClobber = false, inPlace = false, resume = false;
    bool quiet = false, verbose = false;
};

}  // namespace zelcli
