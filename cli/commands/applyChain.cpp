#include "cli/commands/applyChain.h"

#include "cli/files/writePicture.h"
#include "cli/recipes/recipe.h"
#include "cli/run/namingFile.h"
#include "platform/utf8Path.h"

namespace zelcli {

namespace {

using zellab::platform::utf8Path;

/// An option that the effect needs must be there, and one that it cannot use must not.
void checkNeed(const zel_effect& effect, zel_need need, const std::string& value, const char* option) {
    const std::string name = effect.name;
    if (need == ZEL_REQUIRED && value.empty()) throw UsageError(name + " needs " + option);
    if (need == ZEL_NO && !value.empty()) throw UsageError(name + " takes no " + option);
}

/// At most one step of a chain can give back a plane: there is one place for it.
void refuseTwice(const ApplyOptions& options, std::string StepOptions::*member, const char* option) {
    int given = 0;
    for (const StepOptions& step : options.steps) given += !(step.*member).empty();
    if (given > 1) throw UsageError(std::string(option) + " is for one effect of a chain");
}

/// Files that a recipe names lie beside it, wherever it was moved to.
std::string besideRecipe(const zel_effect& effect, const std::string& name, const std::string& text,
                         const std::string& recipe) {
    for (std::size_t i = 0; i < effect.parameter_count; ++i)
        if (effect.parameters[i]->kind == ZEL_FILE && name == effect.parameters[i]->name && !text.empty())
            return (utf8Path(recipe).parent_path() / utf8Path(text)).string();
    return text;
}

}  // namespace

Recipe readRecipe(const std::string& file) {
    const auto bytes = readFileBytes(UserPath(file).real);
    try {
        return parseRecipe(std::string(bytes.begin(), bytes.end()));
    } catch (const RecipeError& error) {
        throw Failure(error.what());
    }
}

namespace {

Recipe recipeOf(const ApplyOptions& options) {
    Recipe recipe;
    for (const StepOptions& step : options.steps) {
        if (!(step.mask + step.second + step.depth).empty())
            throw UsageError(
                "a recipe holds effects and values; it has no place for --mask, --second or --depth");
        RecipeStep& kept = recipe.steps.emplace_back(RecipeStep{step.effect, {}});
        for (const std::string& word : step.assignments) kept.values.push_back(parseAssignment(word));
        if (!step.cube.empty()) kept.values.emplace_back("cube", step.cube);
    }
    return recipe;
}

}  // namespace

void resolveRecipe(ApplyOptions& options) {
    if (!options.recipe.empty()) {
        if (!options.steps.empty()) throw UsageError("--recipe holds the effects; name none besides");
        const Recipe recipe = namingFile(options.recipe, [&] { return readRecipe(options.recipe); });
        for (const auto& [name, values] : recipe.steps) {
            const zel_effect& effect = findEffect(name);
            StepOptions& step = options.steps.emplace_back();
            step.effect = name;
            for (const auto& [parameter, text] : values) {
                const std::string value = besideRecipe(effect, parameter, text, options.recipe);
                if (parameter == "cube")
                    step.cube = value;
                else
                    step.assignments.push_back(std::string(parameter).append("=").append(value));
            }
        }
    }
    if (options.steps.empty()) throw UsageError("EFFECT is required (or --recipe)");
}

std::vector<ChainStep> makeChain(const ApplyOptions& options) {
    std::vector<ChainStep> chain;
    bool takesFaces = false;
    for (const StepOptions& given : options.steps) {
        ChainStep step;
        const zel_effect& effect = findEffect(given.effect);
        step.effect = &effect;
        step.values = parseValues(effect, given.assignments);
        checkNeed(effect, effect.mask, given.mask, "--mask");
        checkNeed(effect, effect.second, given.second, "--second");
        checkNeed(effect, takesCube(effect) ? ZEL_OPTIONAL : ZEL_NO, given.cube, "--cube");
        checkNeed(effect, effect.depth, given.depth, "--depth");
        checkNeed(effect, effect.mask_out, given.maskOut, "--mask-out");
        checkNeed(effect, effect.depth_out, given.depthOut, "--depth-out");
        step.givesMask = !given.maskOut.empty();
        step.givesDepth = !given.depthOut.empty();
        takesFaces = takesFaces || effect.faces != ZEL_NO;
        chain.push_back(std::move(step));
    }
    refuseTwice(options, &StepOptions::maskOut, "--mask-out");
    refuseTwice(options, &StepOptions::depthOut, "--depth-out");
    // Faces that are needed and not given are found.
    if (!takesFaces && !options.faces.empty()) throw UsageError(chainName(chain) + " takes no --faces");
    if (!takesFaces && options.face != "all") throw UsageError(chainName(chain) + " takes no --face");
    return chain;
}

void saveRecipe(const ApplyOptions& options) {
    if (options.saveRecipe.empty()) return;
    const Recipe recipe = recipeOf(options);
    namingFile(options.saveRecipe, [&] { writeText(UserPath(options.saveRecipe).real, recipeJson(recipe)); });
}

void prepareChain(std::vector<ChainStep>& chain, const ApplyOptions& options) {
    for (std::size_t i = 0; i < chain.size(); ++i) {
        const StepOptions& given = options.steps[i];
        ChainStep& step = chain[i];
        if (!given.cube.empty()) step.values.set("cube", given.cube);
        const auto& values = step.values.list();
        require(zel_check_values(step.effect->name, values.data(), values.size(), &step.meaning));
        step.caution = step.meaning.caution;
        step.maskFile = given.mask;
        if (!given.mask.empty())
            step.mask = namingFile(given.mask, [&] { return readMask(UserPath(given.mask).real); });
        if (!given.depth.empty())
            step.depth = namingFile(given.depth, [&] { return readMask(UserPath(given.depth).real); });
        if (!given.second.empty())
            step.second = namingFile(given.second,
                                     [&] { return readPicture(UserPath(given.second), options.read).image; });
    }
}

std::string chainName(const std::vector<ChainStep>& chain) {
    std::string name;
    for (const ChainStep& step : chain) name.append(name.empty() ? "" : " + ").append(step.effect->name);
    return name;
}

}  // namespace zelcli
