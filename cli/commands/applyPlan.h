#pragma once

#include <string>
#include <utility>
#include <vector>

#include "cli/commands/applyOptions.h"
#include "cli/files/readPicture.h"

namespace zelcli {

/// One input with everything that belongs to it.
struct ApplyItem {
    UserPath input, output;
    std::optional<PictureFormat> format;  // of the output; none: that of the input, where it can be written
    UserPath sheet;                       // shown empty: none
    UserPath faces;                       // likewise
    UserPath maskOut;                     // likewise
    UserPath depthOut;                    // likewise
};

struct ApplyPlan {
    std::vector<ApplyItem> items;
    std::vector<UserPath> folders;                              // to be made where they are missing
    std::vector<std::pair<std::string, std::string>> failures;  // folders that cannot be read, and why
};

/// Finds the output of every input. A folder among the inputs stands for the pictures in it, by their suffix, and with
/// --recursive for those below. OUT is a file for one input. It is a folder, made where it is missing, for several
/// inputs or a folder, where it exists as one, or where it ends in a slash; each output there has its input's name,
/// with .png in place of a suffix that is not written, and pictures of an input folder keep their subfolders.
/// --suffix goes behind the name, and without OUT the outputs lie beside their inputs. --compare follows the same rule
/// with NAME-sheet.png, --mask-out with NAME-mask.png and --depth-out with NAME-depth.png, and --faces may be a folder
/// with NAME.json. Throws UsageError where two inputs would share an output, an output would land on an input without
/// --in-place, or a suffix names no format.
ApplyPlan planApply(const ApplyOptions& options);

}  // namespace zelcli
