// Recipes: any text is one or refused with a reason, and what was read is written so that it reads the same.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "cli/recipes/recipe.h"

namespace {

void expect(bool holds) {
    if (!holds) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    zelcli::Recipe recipe;
    try {
        recipe = zelcli::parseRecipe({reinterpret_cast<const char*>(input), size});
    } catch (const zelcli::RecipeError& error) {
        expect(*error.what());
        return 0;
    }
    const zelcli::Recipe again = zelcli::parseRecipe(zelcli::recipeJson(recipe));
    expect(again.name == recipe.name && again.steps.size() == recipe.steps.size());
    for (std::size_t i = 0; i < recipe.steps.size(); ++i) {
        expect(again.steps[i].effect == recipe.steps[i].effect);
        expect(again.steps[i].values.size() == recipe.steps[i].values.size());
    }
    return 0;
}
