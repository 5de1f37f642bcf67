#pragma once

#include <memory>
#include <string>

#include "libzel/cube/cubeFile.h"
#include "libzel/effect.h"
#include "libzel/effectChecks.h"
#include "libzel/faces/faceRecords.h"
#include "zellab/utils/assetFolders.h"

/// What the families of effects share: ways to declare parameters, and the walk over the faces of a picture.

namespace zel {

inline Parameter numberParameter(const char* name, double minimum, double maximum, const char* defaultValue,
                                 const char* help) {
    return {name, ZEL_NUMBER, minimum, maximum, defaultValue, help, {}};
}

inline Parameter integerParameter(const char* name, double minimum, double maximum, const char* defaultValue,
                                  const char* help) {
    return {name, ZEL_WHOLE_NUMBER, minimum, maximum, defaultValue, help, {}};
}

inline Parameter choiceParameter(const char* name, std::vector<std::string> choices, const char* defaultValue,
                                 const char* help) {
    return {name, ZEL_CHOICE, 0, 0, defaultValue, help, std::move(choices)};
}

inline Parameter toggleParameter(const char* name, const char* defaultValue, const char* help) {
    return {name, ZEL_SWITCH, 0, 0, defaultValue, help, {}};
}

inline Parameter textParameter(const char* name, const char* defaultValue, const char* help) {
    return {name, ZEL_TEXT, 0, 0, defaultValue, help, {}};
}

/// A point of the picture, or one word.
inline Parameter pointParameter(const char* name, const char* word, const char* help) {
    return {name, ZEL_POINT, 0, 0, word, help, {word}};
}

/// A file that may be missing.
inline Parameter fileParameter(const char* name, const char* help) {
    return {name, ZEL_FILE, 0, 0, "", help, {}};
}

inline Parameter in(const char* unit, Parameter parameter) {
    parameter.unit = std::string(unit);
    return parameter;
}

/// A parameter that stays for those who know it.
inline Parameter advanced(Parameter parameter) {
    parameter.advanced = true;
    return parameter;
}

inline constexpr const char* kCube = "cube";
inline Parameter cubeParameter() {
    return fileParameter(kCube, "colour lookup of a .cube file, in place of a look");
}

inline Parameter faceIndexParameter() {
    constexpr double kLastFace = 1023;
    return integerParameter("faceIndex", -1, kLastFace, "-1", "which face; -1: all of them in turn");
}

/// The lookup of the file that was given, or else of an asset.
inline std::vector<unsigned char> lookupOf(const EffectRun& run, const std::string& asset) {
    const std::string& given = run.values.text(kCube);
    if (!given.empty()) return cubePicture(readGivenCube(given));
    try {
        return cubePicture(readCubeFile(zellab::assetPath(run.surroundings.assets, asset)));
    } catch (const Failure& failure) {
        throw assetFailure(asset, failure.what());
    }
}

/// Calls call(points, index) for the face that was asked for, or for each in turn; false means that the
/// library refused the picture.
template <typename Call>
void forFaces(EffectRun& run, const Call& call) {
    const int asked = run.values.integer("faceIndex");
    const int count = static_cast<int>(run.faces.faces.size());
    if (asked >= 0) faceAt(run, asked);
    const auto points = makeFacePoints(run.faces, run.image.width, run.image.height);
    const int first = asked < 0 ? 0 : asked, last = asked < 0 ? count - 1 : asked;
    for (int face = first; face <= last; ++face) {
        if (!call(points.get(), face)) throw Failure("the library refused the picture");
        run.progress("face " + std::to_string(face),
                     static_cast<double>(face - first + 1) / (last - first + 1));
    }
}

}  // namespace zel
