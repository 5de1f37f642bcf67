// The C interface driven by bytes: calls, names, values, sizes, strides and faces as they come. Whatever a host gives,
// a call ends with a status, stays inside the caller's memory, and a failed one leaves the picture as it was.
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "zel/zel.h"

namespace {

/// Choices from the input; zeros where it ends.
class Choices {
public:
    Choices(const std::uint8_t* data, std::size_t size) : m_data(data), m_left(size) {}
    bool done() const { return m_left == 0; }
    unsigned byte() {
        if (m_left == 0) return 0;
        --m_left;
        return *m_data++;
    }
    /// One of `count`.
    std::size_t of(std::size_t count) { return byte() % count; }
    bool seldom() { return byte() == 255; }
    float any() {
        std::uint32_t bits = 0;
        for (int i = 0; i < 4; ++i) bits = bits << 8 | byte();
        float value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
    /// A text of up to `longest` bytes.
    std::string text(std::size_t longest) {
        std::string text;
        for (std::size_t length = of(longest + 1); length > 0 && m_left > 0; --length)
            text += static_cast<char>(byte());
        return text;
    }

private:
    const std::uint8_t* m_data;
    std::size_t m_left;
};

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
        pixels = {bytes.data(), width, height, stride, format, 0};
        if (format != ZEL_GRAY8 && choices.byte() & 1) pixels.flags = ZEL_PREMULTIPLIED;
    }
};

constexpr int kSide = 40;

int sideOf(Choices& choices) {
    return 1 + static_cast<int>(choices.of(kSide));
}

int progress(void* user, double, const char*) {
    return user && (*static_cast<int*>(user))-- == 0;  // null where the struct was cut short
}

zel_faces* makeFaces(Choices& choices) {
    std::vector<zel_face> list(choices.of(3));
    for (zel_face& face : list) {
        const bool wild = choices.seldom();
        const auto number = [&] {
            return wild ? choices.any() : static_cast<float>(choices.byte()) / 200 - 0.1f;
        };
        for (float& side : face.rect) side = number();
        for (auto& point : face.points)
            for (float& axis : point) axis = number();
        face.confidence = number();
        for (float& group : face.guessed) group = number();
    }
    zel_faces* faces = nullptr;
    if (zel_faces_create(list.data(), list.size(), sideOf(choices), sideOf(choices), &faces) != ZEL_OK &&
        faces)
        std::abort();
    return faces;
}

void apply(zel_context* context, Choices& choices) {
    const zel_effect* const effect = zel_effect_at(choices.of(zel_effect_count()));
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
                apply(context, choices);
        }
    }
    zel_context_destroy(context);
    return 0;
}
