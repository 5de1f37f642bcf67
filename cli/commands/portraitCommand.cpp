#include "portraitCommand.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

#include "applyCommand.h"
#include "effectRegistry.h"
#include "facesJson.h"
#include "nearestWord.h"
#include "pictures/pngFile.h"
#include "pictures/readPicture.h"
#include "pictures/writePicture.h"
#include "portrait/portrait.h"
#include "portrait/portraitOptions.h"
#include "run/messages.h"

namespace zel {

namespace {

constexpr int kLongestSide = 16384;  // of a drawn portrait

/// One of the masks of a portrait, by the name of its file.
struct TruthMask {
    const char* name;
    Mask Portrait::*mask;
};

constexpr TruthMask kTruthMasks[] = {
    {"person", &Portrait::person},      {"hair", &Portrait::hair},
    {"skin", &Portrait::skin},          {"face", &Portrait::face},
    {"eyes", &Portrait::eyes},          {"iris", &Portrait::iris},
    {"brows", &Portrait::brows},        {"lips", &Portrait::lips},
    {"moles", &Portrait::moles},        {"freckles", &Portrait::freckles},
    {"wrinkles", &Portrait::wrinkles},  {"dark-circles", &Portrait::darkCircles},
    {"dull-skin", &Portrait::dullSkin}, {"scratches", &Portrait::scratches},
};

/// "900x1200" as two whole numbers in range.
std::pair<int, int> parseSize(const std::string& text) {
    int width = 0, height = 0;
    const char* end = text.data() + text.size();
    const auto first = std::from_chars(text.data(), end, width);
    const bool cross = first.ec == std::errc() && first.ptr != end && *first.ptr == 'x';
    const auto second = cross ? std::from_chars(first.ptr + 1, end, height) : first;
    if (!cross || second.ec != std::errc() || second.ptr != end || width < 1 || height < 1 ||
        std::max(width, height) > kLongestSide)
        throw UsageError("--size must be WIDTHxHEIGHT with sides of 1 to " + std::to_string(kLongestSide) +
                         " pixels, not '" + text + "'");
    return {width, height};
}

void applyAssignment(PortraitParams& params, const std::string& word) {
    const auto equals = word.find('=');
    if (equals == std::string::npos || equals == 0)
        throw UsageError("--set takes NAME=VALUE, not '" + word + "'");
    const std::string name = word.substr(0, equals);
    std::vector<std::string> names;
    for (const auto& option : portraitOptions()) names.push_back(option.name);
    if (std::find(names.begin(), names.end(), name) == names.end()) {
        const std::string nearest = nearestWord(name, names);
        throw UsageError("the portrait has no parameter '" + name + "'; " +
                         (nearest.empty() ? "see zel portrait --help" : "did you mean '" + nearest + "'?"));
    }
    try {
        setPortraitOption(params, name, word.substr(equals + 1));
    } catch (const std::invalid_argument& problem) {
        throw UsageError(problem.what());
    }
}

PortraitParams paramsOf(const PortraitOptions& options) {
    PortraitParams params;
    std::tie(params.width, params.height) = parseSize(options.size);
    params.seed = options.seed;
    for (const auto& word : options.assignments) applyAssignment(params, word);
    return params;
}

nlohmann::ordered_json spotJson(const Spot& spot) {
    return {{"x", spot.x}, {"y", spot.y}, {"radius", spot.radius}};
}

/// Irises and moles as circles in pixels.
std::string spotsJson(const Portrait& portrait) {
    nlohmann::ordered_json irises = nlohmann::json::array(), moles = nlohmann::json::array();
    for (const Spot& spot : portrait.irises) irises.push_back(spotJson(spot));
    for (const Spot& spot : portrait.moleSpots) moles.push_back(spotJson(spot));
    return nlohmann::ordered_json{{"irises", irises}, {"moles", moles}}.dump(1) + "\n";
}

/// Depth of 0 to 1 in the full range of 16 bits.
std::vector<std::uint16_t> depthSamples(const std::vector<float>& depth) {
    std::vector<std::uint16_t> samples;
    samples.reserve(depth.size());
    for (const float d : depth)
        samples.push_back(static_cast<std::uint16_t>(std::lround(std::clamp(d, 0.0f, 1.0f) * 65535.0f)));
    return samples;
}

void writeTruth(const UserPath& folder, const Portrait& portrait) {
    std::filesystem::create_directories(folder.real);
    writePicture(folder.real / "clean.png", portrait.clean);
    for (const auto& [name, mask] : kTruthMasks)
        writeFileSafely(folder.real / (std::string(name) + ".png"), encodeGrayPng(portrait.*mask));
    const auto depth = depthSamples(portrait.depth);
    writeFileSafely(folder.real / "depth.png",
                    encodeGray16Png(portrait.image.width, portrait.image.height, depth));
    writeFaces(folder.real / "faces.json", portrait.faces);
    writeText(folder.real / "spots.json", spotsJson(portrait));
}

/// Does one piece of the work; a failure is told with the file's name.
template <typename Work>
bool attempt(Messages& messages, const std::string& file, const Work& work) {
    try {
        work();
        return true;
    } catch (const std::bad_alloc&) {
        messages.error(file, "there is not enough memory for it");
    } catch (const std::exception& problem) {
        messages.error(file, problem.what());
    }
    return false;
}

}  // namespace

int runPortrait(const PortraitOptions& options) {
    const PortraitParams params = paramsOf(options);
    if (!formatOfSuffix(options.output))
        throw UsageError("OUT must end in .png, .jpg or .jpeg, not '" + options.output + "'");
    Messages messages(options.quiet);
    messages.startProgress(1);
    messages.progress(0, "drawing", 0);
    std::optional<Portrait> portrait;
    bool done = attempt(messages, options.output, [&] { portrait = drawPortrait(params); });
    messages.progress(0, "writing", 0.8);
    done = done && attempt(messages, options.output,
                           [&] { writePicture(UserPath(options.output).real, portrait->image); });
    if (done && !options.faces.empty())
        done = attempt(messages, options.faces,
                       [&] { writeFaces(UserPath(options.faces).real, portrait->faces); });
    if (done && !options.truth.empty())
        done = attempt(messages, options.truth, [&] { writeTruth(UserPath(options.truth), *portrait); });
    messages.finished(0, options.output + " (" + options.size + ", seed " + std::to_string(params.seed) + ")",
                      !done);
    return done ? kDone : kWorkFailed;
}

std::vector<std::pair<std::string, std::string>> portraitParameterTexts() {
    std::vector<std::pair<std::string, std::string>> texts;
    for (const PortraitOption& option : portraitOptions()) {
        // Words and ranges are shown as parameters of effects are.
        const ParameterKind kind = !option.choices.empty() ? ParameterKind::choice
                                   : option.whole          ? ParameterKind::integer
                                                           : ParameterKind::number;
        const Parameter shown{option.name, kind, option.minimum, option.maximum, "", "", option.choices};
        texts.emplace_back(option.name, option.help + " (" + describeRange(shown) + ")");
    }
    return texts;
}

std::string portraitParameterLines() {
    constexpr std::size_t kNameWidth = 16;
    std::string lines;
    for (const auto& [name, text] : portraitParameterTexts()) {
        lines.append("  ").append(name).append(
            std::max<std::size_t>(kNameWidth, name.size() + 1) - name.size(), ' ');
        lines.append(text).append("\n");
    }
    return lines;
}

}  // namespace zel
