#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/commands/applyOptions.h"
#include "cli/library.h"
#include "cli/recipes/recipe.h"

namespace zelcli {

/// One effect of a chain, checked, with the pictures that all inputs share.
struct ChainStep {
    const zel_effect* effect = nullptr;
    libzel::Values values;
    zel_meaning meaning = libzel::sized<zel_meaning>();
    std::string caution;   // what the user may not expect; empty: nothing
    std::string maskFile;  // of the mask
    std::optional<Mask> mask, depth;
    std::optional<Image> second;
    bool givesMask = false, givesDepth = false;

    bool needsFaces() const { return effect->faces == ZEL_REQUIRED; }
};

/// Reads a recipe. Throws Failure.
Recipe readRecipe(const std::string& file);

/// Puts the steps of --recipe in their place. Throws UsageError or FileFailure.
void resolveRecipe(ApplyOptions& options);

/// Writes the chain to --save-recipe, where that is given. Throws UsageError or FileFailure.
void saveRecipe(const ApplyOptions& options);

/// Finds the effects and checks all that can be checked without a file. Throws UsageError.
std::vector<ChainStep> makeChain(const ApplyOptions& options);

/// Reads what all inputs share, and asks the library what the values mean. Throws FileFailure.
void prepareChain(std::vector<ChainStep>& chain, const ApplyOptions& options);

/// "auto-face-inpaint + nature-smooth".
std::string chainName(const std::vector<ChainStep>& chain);

}  // namespace zelcli
