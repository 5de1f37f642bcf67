#pragma once

#include <memory>
#include <string>

#include "../cube/cubeFile.h"
#include "../effect.h"
#include "../effectChecks.h"
#include "../faceRecords.h"
#include "../pictures/readPicture.h"

/// What the families of effects share: ways to declare parameters, and the walk over the faces of a picture.

namespace zel {

inline Parameter numberParameter(const char* name, double minimum, double maximum, const char* defaultValue,
                                 const char* help) {
    return {name, ParameterKind::number, minimum, maximum, defaultValue, help, {}, false};
}

inline Parameter integerParameter(const char* name, double minimum, double maximum, const char* defaultValue,
                                  const char* help) {
    return {name, ParameterKind::integer, minimum, maximum, defaultValue, help, {}, false};
}

inline Parameter choiceParameter(const char* name, std::vector<std::string> choices, const char* defaultValue,
                                 const char* help) {
    return {name, ParameterKind::choice, 0, 0, defaultValue, help, std::move(choices), false};
}

inline Parameter toggleParameter(const char* name, const char* defaultValue, const char* help) {
    return {name, ParameterKind::toggle, 0, 0, defaultValue, help, {}, false};
}

inline Parameter textParameter(const char* name, const char* defaultValue, const char* help) {
    return {name, ParameterKind::text, 0, 0, defaultValue, help, {}, false};
}

/// A parameter that stays for those who know it.
inline Parameter offFirstPage(Parameter parameter) {
    parameter.offFirstPage = true;
    return parameter;
}

inline Parameter faceIndexParameter() {
    constexpr double kLastFace = 1023;
    return integerParameter("faceIndex", -1, kLastFace, "-1", "which face; -1: all of them in turn");
}

/// The lookup of --cube, or of an asset, beside which the command stands. A failure of the asset names its file,
/// since no user has typed it.
inline std::vector<unsigned char> lookupOf(const EffectRun& run, const std::string& asset) {
    if (!run.cube.empty()) return cubePicture(readCubeFile(run.cube));
    try {
        return cubePicture(readCubeFile(asset));
    } catch (const Failure& failure) {
        throw FileFailure(asset, failure.what());
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
