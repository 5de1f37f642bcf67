// The C interface driven by bytes: calls, names, values, sizes, strides and faces as they come. Whatever a host gives,
// a call ends with a status, stays inside the caller's memory, and a failed one leaves the picture as it was.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "interfaceCall.h"

namespace {

using zelfuzz::Choices, zelfuzz::makeFaces, zelfuzz::sideOf;

void faces(Choices& choices) {
    const std::string text = choices.text(200);
    zel_faces* list = nullptr;
    if (zel_faces_from_json(text.data(), text.size(), &list) != ZEL_OK && list) std::abort();
    if (!list) list = makeFaces(choices);
    float points[ZEL_FACE_POINTS][2];
    for (std::size_t i = 0; i < zel_faces_count(list); ++i)
        zel_faces_interpolate(list, i, sideOf(choices), sideOf(choices), points);
    const char* json = nullptr;
    std::size_t length = 0;
    if (list && zel_faces_to_json(list, &json, &length) == ZEL_OK && std::strlen(json) != length)
        std::abort();
    zel_faces_destroy(list);
}

void decode(zel_context* context, Choices& choices) {
    const std::string file = choices.text(250);
    const zel_decode_options options{sizeof options, static_cast<int>(choices.byte() & 1),
                                     static_cast<int>(choices.byte() & 1),
                                     static_cast<int>(choices.of(9)) - 1};
    zel_picture* picture = nullptr;
    if (zel_decode_memory(context, file.data(), file.size(), &options, &picture) == ZEL_OK) {
        zel_pixels pixels;
        if (zel_picture_pixels(picture, &pixels) != ZEL_OK || pixels.width < 1) std::abort();
    }
    zel_picture_destroy(picture);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* input, std::size_t size) {
    Choices choices(input, size);
    const zel_settings settings{sizeof settings, nullptr, nullptr, nullptr, static_cast<int>(choices.of(3)),
                                ZEL_GL_NEVER};
    zel_context* context = nullptr;
    if (zel_context_create(&settings, &context) != ZEL_OK) std::abort();
    for (int calls = 0; calls < 8 && !choices.done(); ++calls) {
        switch (choices.of(4)) {
            case 0:
                faces(choices);
                break;
            case 1:
                decode(context, choices);
                break;
            default:
                zelfuzz::apply(context, zel_effect_at(choices.of(zel_effect_count())), choices);
        }
    }
    zel_context_destroy(context);
    return 0;
}
