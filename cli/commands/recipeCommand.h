#pragma once

#include <string>
#include <vector>

namespace zelcli {

/// Prints what recipes do, one step a line. A folder stands for the .json files in it. Returns kDone or kWorkFailed.
int runRecipe(const std::vector<std::string>& files);

}  // namespace zelcli
