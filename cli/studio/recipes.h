#pragma once

#include <string>
#include <vector>

#include "cli/studio/chain.h"
#include "cli/studio/folder.h"

namespace zelcli::studio {

/// Chains as the command's recipes, in files of the folder.

/// Names of the folder's recipes: files of JSON that say that they are one.
std::vector<std::string> recipesIn(const Folder& folder);

/// The chain of a recipe as the page takes it. Throws Failure, Refused.
Json recipeForPage(const Folder& folder, const std::string& name);

/// Writes the steps that are not switched off. Gives the file's name, and in `notes` what a recipe cannot hold:
/// masks, depth and second pictures, and the share of an effect. Throws Failure, Refused.
std::string keepRecipe(const Folder& folder, const std::string& name, const Chain& chain,
                       std::vector<std::string>& notes);

}  // namespace zelcli::studio
