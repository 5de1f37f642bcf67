#include <algorithm>
#include <cmath>
#include <memory>

#include "libzel/call.h"
#include "libzel/faces/faceDetector.h"
#include "libzel/faces/faceList.h"
#include "libzel/faces/faceRecords.h"
#include "libzel/faces/faceSearch.h"
#include "libzel/faces/facesJson.h"
#include "libzel/pixels.h"

namespace {

using namespace zel;

static_assert(kFaceGroups == ZEL_FACE_GROUPS);

Face ownFace(const zel_face& face, const std::string& name) {
    const auto inRange = [&](float fraction) {
        if (!(fraction >= static_cast<float>(kLeastFraction) &&
              fraction <= static_cast<float>(kLargestFraction)))
            throw Failure(name + " has a number outside -1 to 2", ZEL_BAD_VALUE);
        return fraction;
    };
    Face own;
    for (std::size_t i = 0; i < own.rect.size(); ++i) own.rect[i] = inRange(face.rect[i]);
    if (!(own.rect[2] > 0 && own.rect[3] > 0))
        throw Failure(name + " has a rect without width or height", ZEL_BAD_VALUE);
    for (std::size_t i = 0; i < own.points.size(); ++i)
        own.points[i] = {inRange(face.points[i][0]), inRange(face.points[i][1])};
    if (!(face.confidence <= 1)) throw Failure(name + " has a confidence above 1", ZEL_BAD_VALUE);
    if (face.confidence >= 0) own.confidence = face.confidence;
    for (std::size_t i = 0; i < own.guessed.size(); ++i) {
        if (!(face.guessed[i] >= 0 && face.guessed[i] <= 1))
            throw Failure(name + " has a guessed group outside 0 to 1", ZEL_BAD_VALUE);
        own.guessed[i] = face.guessed[i];
    }
    return own;
}

Failure noFace(std::size_t index, std::size_t count) {
    return badArgument("there is no face " + std::to_string(index) + " among " + std::to_string(count));
}

zel_face hostFace(const Face& face) {
    zel_face own;
    std::copy(face.rect.begin(), face.rect.end(), own.rect);
    for (std::size_t i = 0; i < face.points.size(); ++i) {
        own.points[i][0] = face.points[i].x;
        own.points[i][1] = face.points[i].y;
    }
    own.confidence = face.confidence.value_or(-1.0f);
    std::copy(face.guessed.begin(), face.guessed.end(), own.guessed);
    return own;
}

}  // namespace

zel_status zel_faces_create(const zel_face* faces, size_t count, int width, int height, zel_faces** out) {
    return guarded([&] {
        zel_faces*& result = given(out, "out");
        result = nullptr;
        if (count > 0) given(faces, "faces");
        if (count > kMostFaces) throw badArgument("more than " + std::to_string(kMostFaces) + " faces");
        if (width < 1 || height < 1) throw badArgument("the picture's size must be 1 and above");
        auto list = std::make_unique<zel_faces>();
        list->set = {width, height, {}};
        for (std::size_t i = 0; i < count; ++i)
            list->set.faces.push_back(ownFace(faces[i], "face " + std::to_string(i)));
        result = list.release();
    });
}

zel_status zel_find_faces(zel_context* context, const zel_pixels* pixels, zel_faces** out) {
    return guardedIn(context, [&] {
        zel_faces*& result = given(out, "out");
        result = nullptr;
        checkColour(pixels, "the picture");
        auto list = std::make_unique<zel_faces>();
        try {
            list->set = searchFaces(*pixels, context->settings.assets);
        } catch (const DetectorMissing& missing) {
            throw Failure(missing.what(), ZEL_NOT_AVAILABLE);
        }
        result = list.release();
    });
}

zel_status zel_faces_from_json(const char* text, size_t length, zel_faces** out) {
    return guarded([&] {
        zel_faces*& result = given(out, "out");
        result = nullptr;
        auto list = std::make_unique<zel_faces>();
        try {
            list->set = parseFaces(std::string(&given(text, "text"), length));
        } catch (const Failure& failure) {
            throw Failure(failure.what(), ZEL_BAD_FILE);
        }
        result = list.release();
    });
}

zel_status zel_faces_to_json(zel_faces* faces, const char** text, size_t* length) {
    return guarded([&] {
        zel_faces& list = given(faces, "faces");
        given(text, "text") = nullptr;
        list.json = formatFaces(list.set);
        *text = list.json.c_str();
        if (length) *length = list.json.size();
    });
}

size_t zel_faces_count(const zel_faces* faces) {
    return faces ? faces->set.faces.size() : 0;
}

zel_status zel_faces_size(const zel_faces* faces, int* width, int* height) {
    return guarded([&] {
        const FaceSet& set = given(faces, "faces").set;
        given(width, "width") = set.width;
        given(height, "height") = set.height;
    });
}

zel_status zel_faces_get(const zel_faces* faces, size_t index, zel_face* out) {
    return guarded([&] {
        const auto& all = given(faces, "faces").set.faces;
        zel_face& result = given(out, "out");
        if (index >= all.size()) throw noFace(index, all.size());
        result = hostFace(all[index]);
    });
}

zel_status zel_faces_interpolate(const zel_faces* faces, size_t index, int width, int height,
                                 float (*points)[2]) {
    return guarded([&] {
        const FaceSet& set = given(faces, "faces").set;
        given(points, "points");
        if (index >= set.faces.size()) throw noFace(index, set.faces.size());
        if (width < 1 || height < 1) throw badArgument("the picture's size must be 1 and above");
        const auto container = makeFacePoints({set.width, set.height, {set.faces[index]}}, width, height);
        const zellab::Vector2f* const dense = container->GetInterPoints(0);
        if (!dense) throw Failure("the face has no points");
        static_assert(ZEL_FACE_POINTS == zellab::CInterFacePoint::kBlockPoints);
        for (int i = 0; i < ZEL_FACE_POINTS; ++i) {
            points[i][0] = dense[i].x;
            points[i][1] = dense[i].y;
        }
    });
}

void zel_faces_destroy(zel_faces* faces) {
    delete faces;
}
