#include "cli/recipes/recipe.h"

#include <nlohmann/json.hpp>

namespace zelcli {

namespace {

using Json = nlohmann::ordered_json;

constexpr int kVersion = 1;
constexpr std::size_t kMostSteps = 64;

/// Text, number or switch of a value, as text.
std::string valueText(const std::string& name, const Json& value) {
    if (value.is_string()) return value.get<std::string>();
    if (value.is_number() || value.is_boolean()) return value.dump();
    throw RecipeError("the value of '" + name + "' must be a text, a number, true or false");
}

void requireKnownNames(const Json& object, std::initializer_list<const char*> names,
                       const std::string& place) {
    for (const auto& [name, value] : object.items()) {
        bool known = false;
        for (const char* other : names) known = known || name == other;
        if (!known) throw RecipeError(std::string(place).append(" has no '").append(name).append("'"));
    }
}

RecipeStep stepOf(const Json& json) {
    if (!json.is_object() || !json.contains("effect") || !json["effect"].is_string())
        throw RecipeError("each of its steps must name an \"effect\"");
    requireKnownNames(json, {"effect", "set"}, "a step");
    RecipeStep step{json["effect"].get<std::string>(), {}};
    if (!json.contains("set")) return step;
    if (!json["set"].is_object()) throw RecipeError("\"set\" must hold names and values");
    for (const auto& [name, value] : json["set"].items())
        step.values.emplace_back(name, valueText(name, value));
    return step;
}

/// A number or a switch is stored as such, so that the file reads well.
Json valueJson(const std::string& text) {
    const Json parsed = Json::parse(text, nullptr, false);
    return parsed.is_number() || parsed.is_boolean() ? parsed : Json(text);
}

}  // namespace

Recipe parseRecipe(const std::string& json) {
    const Json parsed = Json::parse(json, nullptr, false);
    if (parsed.is_discarded()) throw RecipeError("is no JSON");
    if (!parsed.is_object() || !parsed.contains("recipe"))
        throw RecipeError("is no recipe: it has no \"recipe\": 1");
    if (parsed["recipe"] != kVersion)
        throw RecipeError("is a recipe of a later version than this program reads");
    requireKnownNames(parsed, {"recipe", "name", "steps"}, "a recipe");
    Recipe recipe;
    if (parsed.contains("name")) {
        if (!parsed["name"].is_string()) throw RecipeError("its name must be a text");
        recipe.name = parsed["name"].get<std::string>();
    }
    if (!parsed.contains("steps") || !parsed["steps"].is_array() || parsed["steps"].empty())
        throw RecipeError("has no \"steps\"");
    if (parsed["steps"].size() > kMostSteps)
        throw RecipeError("has more than " + std::to_string(kMostSteps) + " steps");
    for (const Json& step : parsed["steps"]) recipe.steps.push_back(stepOf(step));
    return recipe;
}

std::string recipeJson(const Recipe& recipe) {
    Json json = {{"recipe", kVersion}};
    if (!recipe.name.empty()) json["name"] = recipe.name;
    json["steps"] = Json::array();
    for (const RecipeStep& step : recipe.steps) {
        Json entry = {{"effect", step.effect}};
        for (const auto& [name, text] : step.values) entry["set"][name] = valueJson(text);
        json["steps"].push_back(entry);
    }
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace zelcli
