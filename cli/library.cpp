#include "cli/library.h"

#include <array>
#include <cstdio>
#include <cstring>

#include "frame/shortNumber.h"

namespace zelcli {

namespace {

/// Failures to load a picture: the command tells them itself, with the file's name.
constexpr const char* kLoaderSource = "stb_image_util";

constexpr const char* kCubeParameter = "cube";

zel_context* g_voiced = nullptr;

/// " with the left eye guessed", or nothing.
std::string guessedGroups(const zel_face& face) {
    constexpr std::array<const char*, ZEL_FACE_GROUPS> kWords{
        "contour", "left brow", "right brow", "left eye", "right eye", "nose", "mouth"};
    std::string text;
    for (int i = 0; i < ZEL_FACE_GROUPS; ++i)
        if (mostlyGuessed(face, i))
            text.append(text.empty() ? " with the " : " and ").append(kWords[static_cast<std::size_t>(i)]);
    return text.empty() ? text : text + " guessed";
}

bool isCube(const zel_parameter& parameter) {
    return parameter.kind == ZEL_FILE && std::strcmp(parameter.name, kCubeParameter) == 0;
}

}  // namespace

zel_context* library() {
    static const libzel::Context plain = libzel::createContext();
    return g_voiced ? g_voiced : plain.get();
}

LibraryVoice::LibraryVoice(Messages& messages, bool verbose, const std::string& assets, int threads)
    : m_messages(messages), m_verbose(verbose) {
    auto settings = libzel::sized<zel_settings>();
    settings.assets = assets.empty() ? nullptr : assets.c_str();
    settings.threads = threads;
    settings.log = take;
    settings.log_user = this;
    zel_context* context = nullptr;
    if (zel_context_create(&settings, &context) != ZEL_OK) throw FileFailure("", zel_message());
    m_context.reset(context);
    g_voiced = context;
}

LibraryVoice::~LibraryVoice() {
    g_voiced = nullptr;
}

void LibraryVoice::enter(const std::string& input) {
    const std::lock_guard lock(m_mutex);
    m_inputs.insert(input);
}

void LibraryVoice::leave(const std::string& input) {
    const std::lock_guard lock(m_mutex);
    m_inputs.erase(m_inputs.find(input));
}

void LibraryVoice::take(void* user, zel_log_level level, const char* message, const char* source) {
    auto& voice = *static_cast<LibraryVoice*>(user);
    const std::string text = std::string("library: ") + message;
    if (level != ZEL_LOG_ERROR) {
        if (voice.m_verbose) voice.m_messages.raw(text);
    } else if (voice.m_verbose) {
        voice.m_messages.error(voice.inputAtWork(), source ? text + " [" + source + "]" : text);
    } else if (!source || !std::strstr(source, kLoaderSource)) {
        voice.m_messages.error(voice.inputAtWork(), text);
    }
}

std::string LibraryVoice::inputAtWork() {
    const std::lock_guard lock(m_mutex);
    return m_inputs.size() == 1 ? *m_inputs.begin() : std::string();
}

void require(zel_status status) {
    if (status == ZEL_OK) return;
    if (status == ZEL_BAD_ASSET || status == ZEL_BAD_FILE) throw FileFailure("", zel_message());
    throw Failure(zel_message());
}

void refuseUsage(zel_status status, const std::string& place) {
    const std::string why = zel_message();
    const bool hinted = status != ZEL_UNKNOWN_NAME || why.find("; ") != std::string::npos;
    throw UsageError(hinted ? why : why + "; see " + place);
}

Image imageOf(const zel_pixels& pixels) {
    const auto* const bytes = static_cast<const unsigned char*>(pixels.data);
    const std::size_t count =
        4 * static_cast<std::size_t>(pixels.width) * static_cast<std::size_t>(pixels.height);
    return {pixels.width, pixels.height, {bytes, bytes + count}};
}

zel_pixels pixelsOf(Image& image) {
    return {image.rgba.data(), image.width, image.height, 0, ZEL_RGBA8, 0};
}

zel_pixels pixelsOf(Mask& mask) {
    return {mask.samples.data(), mask.width, mask.height, 0, ZEL_GRAY8, 0};
}

std::vector<const zel_effect*> allEffects() {
    std::vector<const zel_effect*> effects;
    for (std::size_t i = 0; i < zel_effect_count(); ++i) effects.push_back(zel_effect_at(i));
    return effects;
}

const zel_effect& findEffect(const std::string& name) {
    const zel_effect* effect = nullptr;
    const zel_status status = zel_effect_find(name.c_str(), &effect);
    if (status != ZEL_OK) refuseUsage(status, "zel effects");
    return *effect;
}

std::vector<const zel_parameter*> setParameters(const zel_effect& effect) {
    std::vector<const zel_parameter*> parameters;
    for (std::size_t i = 0; i < effect.parameter_count; ++i)
        if (!isCube(*effect.parameters[i])) parameters.push_back(effect.parameters[i]);
    return parameters;
}

bool takesCube(const zel_effect& effect) {
    return setParameters(effect).size() < effect.parameter_count;
}

std::pair<std::string, std::string> parseAssignment(const std::string& word) {
    const auto equals = word.find('=');
    if (equals == std::string::npos || equals == 0)
        throw UsageError("--set takes NAME=VALUE, not '" + word + "'");
    return {word.substr(0, equals), word.substr(equals + 1)};
}

libzel::Values parseValues(const zel_effect& effect, const std::vector<std::string>& assignments) {
    libzel::Values values;
    std::set<std::string> given;
    for (const std::string& word : assignments) {
        auto [name, text] = parseAssignment(word);
        given.insert(name);
        values.set(std::move(name), std::move(text));
    }
    for (const zel_parameter* parameter : setParameters(effect))
        if (!parameter->default_value && !given.contains(parameter->name))
            throw UsageError(std::string(effect.name) + " needs --set " + parameter->name + "=VALUE (" +
                             describeRange(*parameter) + ")");
    const auto& list = values.list();
    const zel_status status = zel_check_values(effect.name, list.data(), list.size(), nullptr);
    if (status != ZEL_OK) refuseUsage(status, std::string("zel apply ") + effect.name + " --help");
    return values;
}

const char* needText(zel_need need) {
    switch (need) {
        case ZEL_OPTIONAL:
            return "optional";
        case ZEL_REQUIRED:
            return "required";
        case ZEL_NO:
            break;
    }
    return "no";
}

std::string describeRange(const zel_parameter& parameter) {
    std::string text;
    const bool hasRange = parameter.minimum < parameter.maximum;
    const std::string range =
        zellab::shortNumber(parameter.minimum) + ".." + zellab::shortNumber(parameter.maximum);
    switch (parameter.kind) {
        case ZEL_NUMBER:
            text = hasRange ? range : "number";
            break;
        case ZEL_WHOLE_NUMBER:
            text = hasRange ? "whole, " + range : "whole number";
            break;
        case ZEL_SWITCH:
            text = "true or false";
            break;
        case ZEL_CHOICE:
            for (const char* const* choice = parameter.choices; *choice; ++choice)
                text.append(text.empty() ? "" : "|").append(*choice);
            break;
        case ZEL_COLOUR:
            text = "colour";
            break;
        case ZEL_POINT:
        case ZEL_FILE:
        case ZEL_TEXT:
            text = "text";
            break;
    }
    const char* const value = parameter.default_value;
    return value && *value ? text + ", default " + value : text;
}

bool mostlyGuessed(const zel_face& face, int group) {
    constexpr float kMostly = 0.5f;
    return face.guessed[group] > kMostly;
}

std::string describeFaces(const zel_faces* found) {
    const std::size_t count = zel_faces_count(found);
    if (count == 0) return "no face found";
    std::string text =
        std::to_string(count) + (count == 1 ? " face found (confidence" : " faces found (confidence");
    const char* separator = " ";
    for (std::size_t i = 0; i < count; ++i) {
        char number[16];
        const zel_face face = libzel::faceAt(found, i);
        const float confidence = face.confidence;
        std::snprintf(number, sizeof number, "%.2f", static_cast<double>(confidence < 0 ? 0 : confidence));
        text.append(separator).append(number).append(guessedGroups(face));
        separator = ", ";
    }
    return text + ")";
}

}  // namespace zelcli
