// What every effect makes of drawn portraits, one line a call: PORTRAIT EFFECT SETTING SUM. Built for two systems, it
// tells whether their bytes are the same. Faces, masks and depth come as files, so that no network takes part.
// Usage: effectTable FOLDER OUT, FOLDER as scripts/windows makes it: NAME.png, NAME.json, NAME/clean.png, NAME/depth.png...
#include <zel/zel.h>

#include <algorithm>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "windowsRand.h"

namespace {

using Byte = unsigned char;

struct Setting {
    std::string name, text;
};

[[noreturn]] void giveUp(const std::string& what) {
    std::fprintf(stderr, "effectTable: %s: %s\n", what.c_str(), zel_message());
    std::exit(1);
}

void check(zel_status status, const std::string& what) {
    if (status != ZEL_OK) giveUp(what);
}

using Picture = std::unique_ptr<zel_picture, decltype(&zel_picture_destroy)>;
using Faces = std::unique_ptr<zel_faces, decltype(&zel_faces_destroy)>;

zel_pixels pixelsOf(const Picture& picture) {
    zel_pixels pixels{};
    check(zel_picture_pixels(picture.get(), &pixels), "pixels");
    return pixels;
}

std::size_t bytesOf(const zel_pixels& pixels) {
    return static_cast<std::size_t>(pixels.width) * static_cast<std::size_t>(pixels.height) *
           (pixels.format == ZEL_RGBA8 ? 4 : 1);
}

/// A plane of bytes that is nobody else's.
struct Plane {
    int width = 0, height = 0;
    std::vector<Byte> samples;
    zel_pixels pixels() { return {samples.data(), width, height, 0, ZEL_GRAY8, 0}; }
};

class Portrait {
public:
    Portrait(zel_context* context, const std::string& base)
        : m_picture(read(context, base + ".png")),
          m_second(read(context, base + "/clean.png")),
          m_skin(readPlane(context, base + "/skin.png")),
          m_marks(readPlane(context, base + "/scratches.png")),
          m_depth(readPlane(context, base + "/depth.png")) {
        std::ifstream stream(base + ".json", std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(stream), {}};
        zel_faces* faces = nullptr;
        check(zel_faces_from_json(text.data(), text.size(), &faces), base + ".json");
        m_faces.reset(faces);
    }

    std::string line(zel_context* context, const zel_effect& effect, const std::vector<Setting>& settings);

private:
    static Picture read(zel_context* context, const std::string& path) {
        zel_picture* picture = nullptr;
        check(zel_decode_file(context, path.c_str(), nullptr, &picture), path);
        return {picture, zel_picture_destroy};
    }

    static Plane readPlane(zel_context* context, const std::string& path) {
        const Picture picture = read(context, path);
        const zel_pixels pixels = pixelsOf(picture);
        Plane plane{pixels.width, pixels.height, std::vector<Byte>(bytesOf(pixels) / 4)};
        for (std::size_t i = 0; i < plane.samples.size(); ++i)
            plane.samples[i] = static_cast<const Byte*>(pixels.data)[4 * i];
        return plane;
    }

    Picture m_picture, m_second;
    Plane m_skin, m_marks, m_depth;
    Faces m_faces{nullptr, zel_faces_destroy};
};

class Sum {
public:
    void add(const void* data, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i)
            m_value = (m_value ^ static_cast<const Byte*>(data)[i]) * 0x100000001b3ull;
    }
    std::string text() const {
        char digits[17];
        std::snprintf(digits, sizeof digits, "%016" PRIx64, m_value);
        return digits;
    }

private:
    std::uint64_t m_value = 0xcbf29ce484222325ull;
};

std::string Portrait::line(zel_context* context, const zel_effect& effect,
                           const std::vector<Setting>& settings) {
    zel_pixels pixels = pixelsOf(m_picture);
    std::vector<Byte> copy(static_cast<Byte*>(pixels.data),
                           static_cast<Byte*>(pixels.data) + bytesOf(pixels));
    pixels.data = copy.data();
    Plane maskOut{pixels.width, pixels.height, std::vector<Byte>(copy.size() / 4)}, depthOut = maskOut;
    zel_pixels second = pixelsOf(m_second), depth = m_depth.pixels(), maskOutPixels = maskOut.pixels(),
               depthOutPixels = depthOut.pixels();
    // What repairs takes the marks; what beautifies the skin.
    zel_pixels mask = (effect.mask == ZEL_REQUIRED ? m_marks : m_skin).pixels();
    std::vector<zel_value> values;
    for (const Setting& setting : settings) values.push_back({setting.name.c_str(), setting.text.c_str(), 0});

    zel_inputs inputs{};
    inputs.struct_size = sizeof inputs;
    inputs.values = values.data();
    inputs.value_count = values.size();
    inputs.faces = effect.faces != ZEL_NO ? m_faces.get() : nullptr;
    inputs.mask = effect.mask != ZEL_NO ? &mask : nullptr;
    inputs.second = effect.second != ZEL_NO ? &second : nullptr;
    inputs.depth = effect.depth != ZEL_NO ? &depth : nullptr;
    inputs.mask_out = effect.mask_out != ZEL_NO ? &maskOutPixels : nullptr;
    inputs.depth_out = effect.depth_out != ZEL_NO ? &depthOutPixels : nullptr;

    std::srand(1);
    const zel_status status = zel_apply(context, effect.name, &pixels, &inputs);
    Sum sum;
    sum.add(copy.data(), copy.size());
    sum.add(maskOut.samples.data(), maskOut.samples.size());
    sum.add(depthOut.samples.data(), depthOut.samples.size());
    std::string text;
    for (const Setting& setting : settings) text += setting.name + "=" + setting.text + ",";
    return std::string(effect.name) + " " + (text.empty() ? "defaults" : text) + " " +
           zel_status_name(status) + " " + sum.text();
}

std::string numberText(double number, zel_kind kind) {
    char text[32];
    std::snprintf(text, sizeof text, kind == ZEL_WHOLE_NUMBER ? "%.0f" : "%.6g", number);
    return text;
}

/// Texts that a parameter may have beside its default.
std::vector<std::string> others(const zel_parameter& parameter) {
    std::vector<std::string> texts;
    const double low = parameter.minimum, high = parameter.maximum;
    switch (parameter.kind) {
        case ZEL_NUMBER:
        case ZEL_WHOLE_NUMBER:
            // A third and all of the way: not where it becomes nothing.
            if (low < high)
                texts = {numberText(low + (high - low) / 3, parameter.kind),
                         numberText(high, parameter.kind)};
            break;
        case ZEL_CHOICE:
            for (const char* const* choice = parameter.choices; *choice; ++choice)
                texts.emplace_back(*choice);
            break;
        case ZEL_SWITCH:
            texts = {"true", "false"};
            break;
        case ZEL_POINT:
            texts = {"0.4,0.45"};
            break;
        case ZEL_COLOUR:
            texts = {"#c08040"};
            break;
        case ZEL_FILE:
        case ZEL_TEXT:
            break;
    }
    return texts;
}

/// All settings that an effect is tried with: the defaults, and each parameter at its other values.
std::vector<std::vector<Setting>> settingsOf(const zel_effect& effect) {
    std::vector<Setting> base;
    for (std::size_t i = 0; i < effect.parameter_count; ++i) {
        const zel_parameter& parameter = *effect.parameters[i];
        if (parameter.default_value) continue;
        const auto texts = others(parameter);
        if (!texts.empty()) base.push_back({parameter.name, texts.front()});
    }
    std::vector<std::vector<Setting>> all{base};
    for (std::size_t i = 0; i < effect.parameter_count; ++i)
        for (const std::string& text : others(*effect.parameters[i])) {
            if (effect.parameters[i]->default_value && text == effect.parameters[i]->default_value) continue;
            auto settings = base;
            std::erase_if(settings, [&](const Setting& s) { return s.name == effect.parameters[i]->name; });
            settings.push_back({effect.parameters[i]->name, text});
            all.push_back(settings);
        }
    return all;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return std::fprintf(stderr, "usage: effectTable FOLDER OUT\n"), 2;
    zel_settings settings{};
    settings.struct_size = sizeof settings;
    settings.threads = 2;
    settings.gl = ZEL_GL_NEVER;
    zel_context* context = nullptr;
    check(zel_context_create(&settings, &context), "context");

    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1]))
        if (entry.path().extension() == ".json") names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    std::ofstream out(argv[2], std::ios::binary);
    for (const std::string& name : names) {
        Portrait portrait(context, std::string(argv[1]) + "/" + name);
        for (std::size_t e = 0; e < zel_effect_count(); ++e)
            for (const auto& setting : settingsOf(*zel_effect_at(e)))
                out << name << ' ' << portrait.line(context, *zel_effect_at(e), setting) << '\n';
    }
    zel_context_destroy(context);
    return out ? 0 : 1;
}
