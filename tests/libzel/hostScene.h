#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "zel/zel.hpp"

namespace zeltest {

/// A drawn portrait with everything that an effect may take beside it, through the interface alone.
class HostScene {
public:
    explicit HostScene(zel_context* context, int width = 300, int height = 400)
        : m_portrait(libzel::made<libzel::Portrait>([&](zel_portrait** out) {
              const libzel::Values defects{{"moles", "12"}, {"wrinkles", "0.6"}, {"darkCircles", "0.8"}};
              return zel_draw_portrait(context, width, height, 9, defects.list().data(),
                                       defects.list().size(), out);
          })),
          faces(libzel::made<libzel::Faces>(
              [&](zel_faces** out) { return zel_portrait_faces(m_portrait.get(), out); })),
          picture(plane("picture")),
          second(plane("clean")),
          mask(plane("skin")),
          depth(plane("person")) {
        maskBytes.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        depthBytes = maskBytes;
    }

    zel_pixels plane(const char* name) const {
        zel_pixels pixels;
        libzel::require(zel_portrait_plane(m_portrait.get(), name, &pixels));
        return pixels;
    }

    /// What the effect can take and give; values are the caller's.
    zel_inputs inputsFor(const zel_effect& effect) {
        auto inputs = libzel::sized<zel_inputs>();
        if (effect.faces != ZEL_NO) inputs.faces = faces.get();
        if (effect.mask != ZEL_NO) inputs.mask = &mask;
        if (effect.second != ZEL_NO) inputs.second = &second;
        if (effect.depth != ZEL_NO) inputs.depth = &depth;
        maskOut = {maskBytes.data(), picture.width, picture.height, 0, ZEL_GRAY8, 0};
        depthOut = {depthBytes.data(), picture.width, picture.height, 0, ZEL_GRAY8, 0};
        if (effect.mask_out != ZEL_NO) inputs.mask_out = &maskOut;
        if (effect.depth_out != ZEL_NO) inputs.depth_out = &depthOut;
        return inputs;
    }

    /// The picture's bytes as RGBA, packed.
    std::vector<unsigned char> bytes() const {
        const auto* const data = static_cast<const unsigned char*>(picture.data);
        return {data, data + 4 * static_cast<std::size_t>(picture.width) *
                                 static_cast<std::size_t>(picture.height)};
    }

private:
    const libzel::Portrait m_portrait;

public:
    const libzel::Faces faces;
    const zel_pixels picture, second, mask, depth;
    std::vector<unsigned char> maskBytes, depthBytes;
    zel_pixels maskOut{}, depthOut{};
};

/// The value of a parameter that must be given, by its place in the list: no two places of a drag are one.
inline std::string neededValue(std::size_t place) {
    return "0.4" + std::to_string(place);
}

/// A value for every parameter that must be given.
inline libzel::Values neededValues(const zel_effect& effect) {
    libzel::Values values;
    for (std::size_t i = 0; i < effect.parameter_count; ++i)
        if (!effect.parameters[i]->default_value) values.set(effect.parameters[i]->name, neededValue(i));
    return values;
}

/// The bytes of the scene's picture after an effect.
inline std::vector<unsigned char> retouched(zel_context* context, HostScene& scene,
                                            const zel_effect& effect) {
    std::vector<unsigned char> bytes = scene.bytes();
    zel_pixels pixels = scene.picture;
    pixels.data = bytes.data();
    zel_inputs inputs = scene.inputsFor(effect);
    const libzel::Values values = neededValues(effect);
    inputs.values = values.list().data();
    inputs.value_count = values.list().size();
    libzel::require(zel_apply(context, effect.name, &pixels, &inputs));
    return bytes;
}

}  // namespace zeltest
