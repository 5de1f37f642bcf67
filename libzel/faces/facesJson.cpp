#include "libzel/faces/facesJson.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <nlohmann/json.hpp>
#include <sstream>

#include "libzel/effect.h"
#include "zellab/imageproc/core/memoryReserve.h"

namespace zel {

namespace {

using Json = nlohmann::json;

/// By zel_face_group.
constexpr std::array<const char*, kFaceGroups> kGroupNames{"contour",  "leftBrow", "rightBrow", "leftEye",
                                                           "rightEye", "nose",     "mouth"};

[[noreturn]] void fail(const std::string& where, const std::string& why) {
    throw Failure(where.empty() ? why : where + ": " + why);
}

/// A member that must be there.
const Json& member(const Json& object, const char* name, const std::string& where) {
    if (!object.is_object()) fail(where, "must be an object");
    const auto found = object.find(name);
    if (found == object.end()) fail(where, std::string("\"") + name + "\" is missing");
    return *found;
}

int sideLength(const Json& image, const char* name) {
    const Json& value = member(image, name, "image");
    if (!value.is_number_integer()) fail(std::string("image: ") + name, "must be a whole number");
    const double number = value.get<double>();
    if (!(number >= 1 && number <= 1e6)) fail(std::string("image: ") + name, "must be 1 to 1000000");
    return value.get<int>();
}

float fraction(const Json& value, const std::string& where) {
    if (!value.is_number()) fail(where, std::string("must be a number, not ") + value.type_name());
    const double number = value.get<double>();
    if (!(number >= kLeastFraction && number <= kLargestFraction)) {
        std::ostringstream text;
        text << number << " is no fraction of the picture (pixels are not accepted)";
        fail(where, text.str());
    }
    return static_cast<float>(number);
}

float shareOf(const Json& value, const std::string& where) {
    const double number = value.is_number() ? value.get<double>() : -1;
    if (!(number >= 0 && number <= 1)) fail(where, "must be a number from 0 to 1");
    return static_cast<float>(number);
}

std::array<float, kFaceGroups> guessedOf(const Json& groups, const std::string& where) {
    if (!groups.is_object()) fail(where, "must be an object");
    std::array<float, kFaceGroups> guessed{};
    for (const auto& [name, value] : groups.items()) {
        const auto* const group = std::find(kGroupNames.begin(), kGroupNames.end(), name);
        if (group == kGroupNames.end())
            fail(where, "the groups are contour, leftBrow, rightBrow, leftEye, rightEye, nose and mouth");
        guessed[static_cast<std::size_t>(group - kGroupNames.begin())] =
            shareOf(value, std::string(where).append(": ").append(name));
    }
    return guessed;
}

/// A list with `count` entries; `what` names one entry in the plural.
const Json& listOf(const Json& value, std::size_t count, const char* what, const std::string& where) {
    if (!value.is_array()) fail(where, "must be a list");
    if (value.size() != count)
        fail(where,
             std::to_string(count) + " " + what + " are needed, there are " + std::to_string(value.size()));
    return value;
}

Face parseFace(const Json& json, const std::string& where) {
    Face face;
    const std::string rectPlace = where + ": rect", pointsPlace = where + ": points";
    const Json& rect = listOf(member(json, "rect", where), face.rect.size(), "numbers", rectPlace);
    for (std::size_t i = 0; i < face.rect.size(); ++i) face.rect[i] = fraction(rect[i], rectPlace);
    if (!(face.rect[2] > 0 && face.rect[3] > 0)) fail(rectPlace, "width and height must be above 0");

    const Json& points = listOf(member(json, "points", where), face.points.size(), "pairs", pointsPlace);
    for (std::size_t i = 0; i < face.points.size(); ++i) {
        const std::string place = where + ": point " + std::to_string(i);
        const Json& pair = listOf(points[i], 2, "numbers", place);
        face.points[i] = {fraction(pair[0], place), fraction(pair[1], place)};
    }
    if (const auto told = json.find("confidence"); told != json.end())
        face.confidence = shareOf(*told, where + ": confidence");
    if (const auto told = json.find("guessed"); told != json.end())
        face.guessed = guessedOf(*told, where + ": guessed");
    return face;
}

/// The shortest decimal that reads back as the same float, so that files stay small and true.
Json shortNumber(float value) {
    std::ostringstream text;
    for (int digits = 6; digits <= 9; ++digits) {
        text.str("");
        text.precision(digits);
        text << value;
        if (std::stof(text.str()) == value) break;
    }
    return Json(std::stod(text.str()));
}

}  // namespace

FaceSet parseFaces(const std::string& json) {
    // The JSON library ends the process where it has no memory for taking its tree apart.
    constexpr std::size_t kBase = std::size_t{1} << 16, kPerByte = 32;
    zellab::requireMemory(kBase + kPerByte * json.size());
    Json root;
    try {
        root = Json::parse(json);
    } catch (const Json::parse_error& error) {
        fail("", "is not JSON (at byte " + std::to_string(error.byte) + ")");
    } catch (const Json::out_of_range&) {
        fail("", "holds a number that is too large");
    }
    if (!root.is_object()) fail("", "holds no face data (an object is needed)");
    FaceSet set;
    const Json& image = member(root, "image", "");
    set.width = sideLength(image, "width");
    set.height = sideLength(image, "height");
    const Json& faces = member(root, "faces", "");
    if (!faces.is_array()) fail("faces", "must be a list");
    if (faces.size() > kMostFaces) fail("faces", "more than " + std::to_string(kMostFaces));
    for (std::size_t i = 0; i < faces.size(); ++i)
        set.faces.push_back(parseFace(faces[i], "face " + std::to_string(i)));
    return set;
}

std::string formatFaces(const FaceSet& set) {
    Json faces = Json::array();
    for (const Face& face : set.faces) {
        Json rect = Json::array(), points = Json::array();
        for (const float number : face.rect) rect.push_back(shortNumber(number));
        for (const auto& point : face.points)
            points.push_back(Json::array({shortNumber(point.x), shortNumber(point.y)}));
        faces.push_back({{"rect", rect}, {"points", points}});
        if (face.confidence) faces.back()["confidence"] = shortNumber(*face.confidence);
        for (std::size_t i = 0; i < face.guessed.size(); ++i)
            if (face.guessed[i] > 0) faces.back()["guessed"][kGroupNames[i]] = shortNumber(face.guessed[i]);
    }
    const Json root = {{"image", {{"width", set.width}, {"height", set.height}}}, {"faces", faces}};
    return root.dump() + "\n";
}

}  // namespace zel
