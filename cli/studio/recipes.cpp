#include "cli/studio/recipes.h"

#include <filesystem>

#include "cli/failure.h"
#include "cli/files/readPicture.h"
#include "cli/files/writePicture.h"
#include "cli/recipes/recipe.h"

namespace zelcli::studio {

namespace {

namespace fs = std::filesystem;

constexpr const char* kSuffix = ".json";
constexpr std::uintmax_t kLargestRecipe = 256 << 10;

Recipe readRecipe(const fs::path& path) {
    std::error_code error;
    if (fs::file_size(path, error) > kLargestRecipe || error) throw Failure("is no recipe");
    const auto bytes = readFileBytes(path);
    try {
        return parseRecipe(std::string(bytes.begin(), bytes.end()));
    } catch (const RecipeError& problem) {
        throw Failure(problem.what());
    }
}

std::string withSuffix(const std::string& name) {
    return name.ends_with(kSuffix) ? name : name + kSuffix;
}

}  // namespace

std::vector<std::string> recipesIn(const Folder& folder) {
    std::vector<std::string> names;
    for (const std::string& name : folder.jsonFiles()) {
        try {
            readRecipe(folder.toRead(name));
            names.push_back(name);
        } catch (const std::exception&) {
            // Another program's file.
        }
    }
    return names;
}

Json recipeForPage(const Folder& folder, const std::string& name) {
    const Recipe recipe = readRecipe(folder.toRead(name));
    Json steps = Json::array();
    for (const RecipeStep& step : recipe.steps) {
        Json values = Json::object();
        for (const auto& [parameter, text] : step.values) values[parameter] = text;
        steps.push_back({{"effect", step.effect}, {"values", values}});
    }
    const Json chain = {{"steps", steps}};
    parseChain(chain);  // what the library does not know is told now
    return chain;
}

std::string keepRecipe(const Folder& folder, const std::string& name, const Chain& chain,
                       std::vector<std::string>& notes) {
    Recipe recipe;
    for (const Step& step : chain.steps) {
        const std::string title = step.effect->title;
        if (step.off) continue;
        if (step.strength < 1) notes.push_back("the blend of " + title + " is not kept");
        if (!step.mask.empty() || !step.depth.empty() || !step.second.empty())
            notes.push_back("what was painted or chosen for " + title + " is not kept");
        recipe.steps.push_back({step.effect->name, step.values});
    }
    if (recipe.steps.empty()) throw Refused(400, "there are no effects to keep");
    const std::string file = withSuffix(name);
    const fs::path path = folder.toWrite(file);
    recipe.name = path.stem().string();
    std::error_code error;
    if (fs::exists(path, error)) readRecipe(path);  // only a recipe gives its place to another
    writeText(path, recipeJson(recipe));
    return file;
}

}  // namespace zelcli::studio
