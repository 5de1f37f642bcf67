#pragma once

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

/// A chain of effects in a small file of JSON, to keep and to share. Any host may read and write it: nothing here knows
/// the command.
///
///   {"recipe": 1,
///    "name": "Soft portrait",
///    "steps": [{"effect": "auto-face-inpaint"},
///              {"effect": "nature-smooth", "set": {"radius": 8}}]}

namespace zelcli {

struct RecipeStep {
    std::string effect;
    std::vector<std::pair<std::string, std::string>> values;  // parameter and text, as zel_value takes them
};

struct Recipe {
    std::string name;  // for people; may be empty
    std::vector<RecipeStep> steps;
};

/// What is wrong with a recipe, in one line.
class RecipeError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Reads the form alone: whether effects and values are the library's is for the caller to ask it. Throws RecipeError.
Recipe parseRecipe(const std::string& json);

std::string recipeJson(const Recipe& recipe);

}  // namespace zelcli
