#include "cli/commands/portraitCommand.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <nlohmann/json.hpp>

#include "cli/commands/applyCommand.h"
#include "cli/files/facesFile.h"
#include "cli/files/pngWriter.h"
#include "cli/files/readPicture.h"
#include "cli/files/writePicture.h"
#include "cli/library.h"
#include "cli/run/messages.h"

namespace zelcli {

namespace {

constexpr int kLongestSide = 16384;  // of a drawn portrait

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

nlohmann::ordered_json spotsOf(zel_portrait* portrait, const char* kind) {
    const zel_spot* spots = nullptr;
    std::size_t count = 0;
    require(zel_portrait_spots(portrait, kind, &spots, &count));
    nlohmann::ordered_json list = nlohmann::json::array();
    for (std::size_t i = 0; i < count; ++i)
        list.push_back({{"x", spots[i].x}, {"y", spots[i].y}, {"radius", spots[i].radius}});
    return list;
}

/// Irises and moles as circles in pixels.
std::string spotsJson(zel_portrait* portrait) {
    return nlohmann::ordered_json{{"irises", spotsOf(portrait, "irises")},
                                  {"moles", spotsOf(portrait, "moles")}}
               .dump(1) +
           "\n";
}

zel_pixels planeOf(zel_portrait* portrait, const char* name) {
    zel_pixels pixels;
    require(zel_portrait_plane(portrait, name, &pixels));
    return pixels;
}

libzel::Faces facesOf(const zel_portrait* portrait) {
    return libzel::made<libzel::Faces>([&](zel_faces** out) { return zel_portrait_faces(portrait, out); });
}

/// Every plane but the picture itself, by its name.
void writePlane(const std::filesystem::path& file, zel_portrait* portrait, const char* name) {
    const zel_pixels pixels = planeOf(portrait, name);
    const std::size_t count =
        static_cast<std::size_t>(pixels.width) * static_cast<std::size_t>(pixels.height);
    if (pixels.format == ZEL_GRAY16) {
        const auto* const samples = static_cast<const std::uint16_t*>(pixels.data);
        writeFileSafely(file, encodeGray16Png(pixels.width, pixels.height, {samples, count}));
    } else if (pixels.format == ZEL_GRAY8) {
        const auto* const samples = static_cast<const unsigned char*>(pixels.data);
        writeFileSafely(file, encodeGrayPng({pixels.width, pixels.height, {samples, samples + count}}));
    } else {
        writePicture(file, imageOf(pixels));
    }
}

void writeTruth(const UserPath& folder, zel_portrait* portrait) {
    std::filesystem::create_directories(folder.real);
    for (std::size_t i = 1; const char* name = zel_portrait_plane_name(i); ++i)
        writePlane(folder.real / (std::string(name) + ".png"), portrait, name);
    writeFaces(folder.real / "faces.json", facesOf(portrait).get());
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
    const auto [width, height] = parseSize(options.size);
    libzel::Values values;
    for (const std::string& word : options.assignments) {
        auto [name, value] = parseAssignment(word);
        values.set(std::move(name), std::move(value));
    }
    requireFormat(options.output, "OUT");
    Messages messages(options.quiet);
    messages.startProgress(1);
    messages.progress(0, "drawing", 0);
    zel_portrait* drawn = nullptr;
    const auto& list = values.list();
    const zel_status status =
        zel_draw_portrait(library(), width, height, options.seed, list.data(), list.size(), &drawn);
    const libzel::Portrait portrait(drawn);
    if (status == ZEL_UNKNOWN_NAME || status == ZEL_BAD_VALUE) refuseUsage(status, "zel portrait --help");
    bool done = attempt(messages, options.output, [&] {
        require(status);
        messages.progress(0, "writing", 0.8);
        writePicture(UserPath(options.output).real, imageOf(planeOf(drawn, "picture")));
    });
    if (done && !options.faces.empty())
        done = attempt(messages, options.faces,
                       [&] { writeFaces(UserPath(options.faces).real, facesOf(drawn).get()); });
    if (done && !options.truth.empty())
        done = attempt(messages, options.truth, [&] { writeTruth(UserPath(options.truth), drawn); });
    messages.finished(
        0, options.output + " (" + options.size + ", seed " + std::to_string(options.seed) + ")", !done);
    return done ? kDone : kWorkFailed;
}

std::vector<std::pair<std::string, std::string>> portraitParameterTexts() {
    std::vector<std::pair<std::string, std::string>> texts;
    for (std::size_t i = 0; const zel_parameter* parameter = zel_portrait_parameter_at(i); ++i)
        texts.emplace_back(parameter->name,
                           std::string(parameter->help) + " (" + describeRange(*parameter) + ")");
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

}  // namespace zelcli
