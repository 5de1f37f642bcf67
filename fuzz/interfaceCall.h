#pragma once

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "choices.h"
#include "facepoints/faceTemplate.h"
#include "pixels.h"
#include "zel/zel.h"

/// One call of zel_apply made of an input's bytes.

namespace zelfuzz {

/// Pixels in memory that is exactly theirs, so that a sanitizer sees every step beyond it.
struct Buffer {
    std::vector<unsigned char> bytes;
    zel_pixels pixels{};

    Buffer(Choices& choices, zel_format format, int width, int height) {
        const std::size_t channels = format == ZEL_GRAY8 ? 1 : 4;
        const std::size_t row = channels * static_cast<std::size_t>(width), stride = row + choices.of(3) * 4;
        bytes.resize(stride * static_cast<std::size_t>(height - 1) + row);
        for (std::size_t i = 0; i < bytes.size(); ++i)
            bytes[i] = static_cast<unsigned char>(i * 37 + i / row * 11);
        if (channels == 4 && choices.byte() & 1) {
            const auto face = faceOf(width, height);
            for (std::size_t y = 0; y < static_cast<std::size_t>(height); ++y)
                std::copy_n(face.data() + y * row, row, bytes.data() + y * stride);
        }
        pixels = {bytes.data(), width, height, stride, format, 0};
        if (format != ZEL_GRAY8 && choices.byte() & 1) pixels.flags = ZEL_PREMULTIPLIED;
    }
};

constexpr int kSide = 40;

inline int sideOf(Choices& choices) {
    return 1 + static_cast<int>(choices.of(kSide));
}

inline int progress(void* user, double, const char*) {
    return user && (*static_cast<int*>(user))-- == 0;  // null where the struct was cut short
}

inline zel_faces* makeFaces(Choices& choices) {
    std::vector<zel_face> list(choices.of(3));
    for (zel_face& face : list) {
        const bool wild = choices.seldom();
        const auto number = [&] {
            return wild ? choices.any() : static_cast<float>(choices.byte()) / 200 - 0.1f;
        };
        for (float& side : face.rect) side = number();
        // Mostly the standard face with some landmarks elsewhere, so that effects do not end at their doors.
        const bool isStandard = choices.byte() & 1;
        for (std::size_t i = 0; i < ZEL_LANDMARKS; ++i) {
            const zellab::Vector2f at = zellab::kTemplateLandmarks[i];
            const bool moved = !isStandard || choices.byte() % 16 == 15;
            face.points[i][0] = moved ? number() : at.x;
            face.points[i][1] = moved ? number() : at.y;
        }
        face.confidence = number();
        for (float& group : face.guessed) group = number();
    }
    zel_faces* faces = nullptr;
    if (zel_faces_create(list.data(), list.size(), sideOf(choices), sideOf(choices), &faces) != ZEL_OK &&
        faces)
        std::abort();
    return faces;
}

/// One effect on whatever picture, values and faces the choices make.
inline void apply(zel_context* context, const zel_effect* effect, Choices& choices) {
    if (effect->gl == ZEL_REQUIRED && !choices.seldom()) return;  // refused: the context has none
    const int width = sideOf(choices), height = sideOf(choices);
    Buffer picture(choices, choices.byte() & 1 ? ZEL_BGRA8 : ZEL_RGBA8, width, height);
    const bool fits = !choices.seldom();
    const int otherWidth = fits ? width : sideOf(choices), otherHeight = fits ? height : sideOf(choices);
    Buffer mask(choices, ZEL_GRAY8, otherWidth, otherHeight),
        second(choices, ZEL_RGBA8, otherWidth, otherHeight);
    Buffer out(choices, ZEL_GRAY8, otherWidth, otherHeight);

    std::vector<std::string> texts(2 * effect->parameter_count);
    std::vector<zel_value> values;
    for (std::size_t i = 0; i < effect->parameter_count; ++i) {
        const zel_parameter& parameter = *effect->parameters[i];
        if (parameter.default_value && choices.byte() & 1) continue;
        zel_value value{parameter.name, nullptr, 0};
        const double share = static_cast<double>(choices.byte()) / 255;
        value.number = parameter.minimum + share * (parameter.maximum - parameter.minimum);
        if (parameter.kind == ZEL_WHOLE_NUMBER)
            value.number = static_cast<double>(static_cast<long>(value.number));
        if (parameter.kind == ZEL_CHOICE) value.text = parameter.choices[choices.of(2)];
        if (parameter.kind == ZEL_FILE) value.text = "";
        if (parameter.kind == ZEL_SWITCH) value.text = choices.byte() & 1 ? "true" : "no";
        if (choices.seldom()) value.number = static_cast<double>(choices.any());
        if (choices.seldom()) value.text = (texts[2 * i] = choices.text(12)).c_str();
        if (choices.seldom()) value.name = (texts[2 * i + 1] = choices.text(12)).c_str();
        values.push_back(value);
    }
    int asks = choices.seldom() ? static_cast<int>(choices.of(4)) : -1;
    zel_inputs inputs{};
    inputs.struct_size = choices.seldom() ? choices.of(sizeof inputs) : sizeof inputs;
    inputs.values = values.data();
    inputs.value_count = values.size();
    inputs.progress = progress;
    inputs.progress_user = &asks;
    zel_faces* const faces = effect->faces != ZEL_NO ? makeFaces(choices) : nullptr;
    inputs.faces = faces;
    if (effect->mask != ZEL_NO) inputs.mask = &mask.pixels;
    if (effect->second != ZEL_NO) inputs.second = &second.pixels;
    if (effect->depth != ZEL_NO) inputs.depth = &mask.pixels;
    if (effect->mask_out != ZEL_NO && choices.byte() & 1) inputs.mask_out = &out.pixels;
    if (choices.seldom()) picture.pixels.width += static_cast<int>(choices.byte()) - 128;

    const std::vector<unsigned char> before = picture.bytes;
    const int width0 = picture.pixels.width;
    const bool whole = width0 >= 1 && width0 <= width;  // else the memory is not what the pixels claim
    if (whole || width0 < 1) {
        const zel_status status = zel_apply(context, effect->name, &picture.pixels, &inputs);
        if (status != ZEL_OK && picture.bytes != before) std::abort();
        if (status != ZEL_OK && !*zel_message()) std::abort();
    }
    zel_faces_destroy(faces);
}

}  // namespace zelfuzz
