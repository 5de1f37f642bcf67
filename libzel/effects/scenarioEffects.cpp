#include <algorithm>
#include <array>

#include "libzel/effects/blockEdges.h"
#include "libzel/effects/effectLists.h"
#include "libzel/effects/effectParts.h"
#include "zel_effects/zel_effects.h"

namespace zel {

namespace {

/// The library numbers its scenarios; the command names them by what their recipes are good for.
constexpr std::array kScenarioNames = {"scenery", "portrait", "architecture", "food",
                                       "travel",  "haze",     "night"};

ZelImageCore::eScenarioType scenarioOf(const std::string& type) {
    const auto* const name = std::find(kScenarioNames.begin(), kScenarioNames.end(), type);
    const auto number = name != kScenarioNames.end() ? name - kScenarioNames.begin() + 1 : type.front() - '0';
    return static_cast<ZelImageCore::eScenarioType>(number);
}

std::vector<std::string> scenarioWords() {
    std::vector<std::string> words(kScenarioNames.begin(), kScenarioNames.end());
    for (char number = '1'; number <= '7'; ++number) words.emplace_back(1, number);
    return words;
}

/// The portrait recipe alone reshapes and smooths, and at full strength even that is only a look.
bool scenarioUsesFaces(const ParameterValues& values) {
    return scenarioOf(values.text("type")) == ZelImageCore::eScenario2 && values.number("alpha") < 1.0f;
}

std::string scenarioCaution(const ParameterValues& values) {
    if (scenarioOf(values.text("type")) != ZelImageCore::eScenario2 || values.number("alpha") < 1.0f)
        return {};
    return "alpha is 1: the look alone is applied; a value below 1, say 0.99, reshapes and smooths as well";
}

void runScenario(EffectRun& run) {
    Image& image = run.image;
    std::vector<unsigned char> lookup = lookupOf(run, "looks/" + run.values.text("look") + ".cube");
    softenBlockEdges(image);  // every recipe sharpens or stretches, and would do so with the blocks
    FaceInfoBlock faces(run.faces);
    ZelImageCore::CScenarioBeauty beauty;
    if (!beauty.Run(image.rgba.data(), image.width, image.height, scenarioOf(run.values.text("type")),
                    run.values.number("alpha"), lookup.data(), faces.get()))
        throw Failure("alpha is 0: only the portrait scenario does anything then");
}

}  // namespace

std::vector<Effect> scenarioEffects() {
    Effect effect;
    effect.name = "scenario";
    effect.title = "One-call scenario";
    effect.operation = "ZelImageCore::CScenarioBeauty::Run";
    effect.summary =
        "One call for a whole picture: portrait slims, opens eyes, smooths skin and grades the colour";
    effect.advice =
        "The quickest way to a finished picture: start here and lower alpha until it looks like the person. "
        "Near 0 only the reshaping of type portrait shows; at 1 the look alone is applied in full, without "
        "reshaping.";
    effect.parameters = {
        choiceParameter("type", scenarioWords(), "portrait", "recipe, by name or by the library's number"),
        numberParameter(
            "alpha", 0, 1, "0.6",
            "strength; of portrait the reshaping is full below 1, and at 1 the look alone is applied"),
        choiceParameter("look", {"identity", "warm", "cool", "clear", "soft", "film", "mono"}, "clear",
                        "named colour look, where no cube file is given"),
        cubeParameter()};
    effect.faces = ZEL_OPTIONAL;
    effect.usesFaces = scenarioUsesFaces;
    effect.caution = scenarioCaution;
    effect.example =
        "zel apply scenario portrait.jpg -o out.jpg --set type=portrait --set alpha=0.6 --set look=warm";
    effect.run = runScenario;
    return {effect};
}

}  // namespace zel
