#include "cli/commands/recipeCommand.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

#include "cli/commands/applyChain.h"
#include "cli/commands/applyCommand.h"
#include "cli/run/messages.h"
#include "platform/utf8Path.h"

namespace zelcli {

namespace {

namespace fs = std::filesystem;
using zellab::platform::utf8Path;

std::vector<std::string> recipesIn(const std::string& path) {
    std::error_code error;
    std::vector<std::string> files;
    if (!fs::is_directory(utf8Path(path), error)) return {path};
    for (fs::directory_iterator at(utf8Path(path), error), end; !error && at != end; at.increment(error))
        if (at->path().extension() == ".json") files.push_back(at->path().string());
    std::sort(files.begin(), files.end());
    return files;
}

/// Throws Failure or UsageError where an effect or a value is not the library's.
std::string describe(const std::string& file) {
    const Recipe recipe = readRecipe(file);
    std::string text = file + (recipe.name.empty() ? "" : ": " + recipe.name) + "\n";
    for (const auto& [name, values] : recipe.steps) {
        const zel_effect& effect = findEffect(name);
        text.append("  ").append(name);
        for (const auto& [parameter, value] : values)
            text.append("  ").append(parameter).append("=").append(value);
        text.append("\n    ").append(effect.summary).append("\n");
    }
    return text;
}

}  // namespace

int runRecipe(const std::vector<std::string>& files) {
    Messages messages(false);
    int status = kDone;
    for (const std::string& given : files)
        for (const std::string& file : recipesIn(given)) {
            try {
                std::cout << describe(file);
            } catch (const std::exception& problem) {
                messages.error(file, problem.what());
                status = kWorkFailed;
            }
        }
    return status;
}

}  // namespace zelcli
