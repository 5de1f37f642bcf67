#include "photographMarks.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <nlohmann/json.hpp>

#include "libzel/faces/faceFrame.h"
#include "libzel/failure.h"
#include "zel_effects/zel_effects.h"

namespace zelmeasures {

namespace {

using Json = nlohmann::json;

constexpr std::size_t kLeftPupil = 24, kRightPupil = 70;

[[noreturn]] void fail(const std::string& where, const std::string& why) {
    throw zel::Failure(where + ": " + why);
}

Point pointOf(const Json& json) {
    if (json.size() != 2) fail("a point", "wants two numbers");
    return {json.at(0).get<float>(), json.at(1).get<float>()};
}

std::size_t landmarkOf(const std::string& text) {
    std::size_t number = zel::kLandmarks;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number >= zel::kLandmarks)
        fail("\"" + text + "\"", "is no landmark");
    return number;
}

MarkedFace faceOf(const Json& json) {
    MarkedFace face;
    for (const auto& [number, point] : json.at("points").items())
        face.points[landmarkOf(number)] = pointOf(point);
    for (const Json& line : json.at("edges")) {
        face.edges.emplace_back();
        for (const Json& point : line) face.edges.back().push_back(pointOf(point));
    }
    if (json.contains("pupilDistance")) {
        face.pupilDistance = json.at("pupilDistance").get<float>();
    } else {
        const auto left = face.points.find(kLeftPupil), right = face.points.find(kRightPupil);
        if (left == face.points.end() || right == face.points.end())
            fail("a face", "lacks a pupil, and their distance");
        face.pupilDistance = std::hypot(right->second.x - left->second.x, right->second.y - left->second.y);
    }
    if (!(face.pupilDistance > 0)) fail("pupilDistance", "must be above 0");
    return face;
}

MarkedPhotograph photographOf(const std::string& name, const Json& json) {
    MarkedPhotograph photograph;
    photograph.name = name;
    photograph.half = json.at("half").get<std::string>();
    if (photograph.half != "tune" && photograph.half != "held" && photograph.half != "none")
        fail("half", "must be tune, held or none");
    for (const Json& face : json.value("faces", Json::array())) photograph.faces.push_back(faceOf(face));
    for (const Json& box : json.value("drawn", Json::array()))
        photograph.drawn.push_back(box.get<std::array<float, 4>>());
    return photograph;
}

void addPlaces(const Json& json, bool sharp, std::vector<MarkedPlace>& places) {
    for (const auto& [what, box] : json.items()) {
        const auto [x, y, width, height] = box.get<std::array<int, 4>>();
        if (x < 0 || y < 0 || width < 1 || height < 1) fail(what, "is no rectangle");
        places.push_back({what, sharp, x, y, width, height});
    }
}

PhotographPlaces placesOf(const std::string& name, const Json& json) {
    PhotographPlaces photograph{name, {}};
    addPlaces(json.at("sharp"), true, photograph.places);
    addPlaces(json.at("ground"), false, photograph.places);
    return photograph;
}

/// What `read` makes of every photograph of the text; tells in which one something is wrong.
template <typename Read>
auto readEach(const std::string& text, Read read) {
    std::string where = "the marks";
    try {
        std::vector<decltype(read(text, Json()))> all;
        const Json root = Json::parse(text);
        for (const auto& [name, photograph] : root.at("photographs").items()) {
            where = name;
            all.push_back(read(name, photograph));
        }
        return all;
    } catch (const Json::exception& error) {
        fail(where, error.what());
    } catch (const zel::Failure& failure) {
        fail(where, failure.what());
    }
}

}  // namespace

std::vector<MarkedPhotograph> readMarks(const std::string& json) {
    return readEach(json, photographOf);
}

std::vector<PhotographPlaces> readPlaces(const std::string& json) {
    return readEach(json, placesOf);
}

std::string readText(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(file), {}};
    if (!file || text.empty()) fail(path, "cannot be read");
    return text;
}

zel::Image loadPhotograph(const std::string& folder, const std::string& name) {
    const std::string stem = folder + "/" + name;
    for (const char* ending : {".jpg", ".png"}) {
        zel::Image image;
        int channels = 0;
        const std::unique_ptr<unsigned char, decltype(&std::free)> pixels(
            ZelImageCore::StbImageUtil::loadImageFromFile(stem + ending, image.width, image.height, channels,
                                                          false, false, 0, false, nullptr),
            std::free);
        if (!pixels) continue;
        const auto size = 4 * static_cast<std::size_t>(image.width) * static_cast<std::size_t>(image.height);
        image.rgba.assign(pixels.get(), pixels.get() + size);
        return image;
    }
    fail(stem, "is not there, or no picture; scripts/photographs brings them");
}

}  // namespace zelmeasures
