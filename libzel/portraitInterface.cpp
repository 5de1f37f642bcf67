#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <variant>
#include <vector>

#include "frame/nearestWord.h"
#include "libzel/call.h"
#include "libzel/faces/faceList.h"
#include "libzel/parameterInfos.h"
#include "libzel/pixels.h"
#include "portrait/portrait.h"
#include "portrait/portraitOptions.h"

/// A drawn portrait and what a host sees of it.
struct zel_portrait {
    zel::Portrait drawn;
    std::vector<std::uint16_t> depth;  // in the full range
    std::vector<zel_spot> irises, moles;
};

namespace {

using namespace zel;

constexpr int kLongestSide = 16384;

/// One plane by the name that hosts know.
struct Plane {
    const char* name;
    std::variant<Image Portrait::*, Mask Portrait::*, std::monostate> member;  // neither: the depth
};

constexpr std::array kPlanes = {
    Plane{"picture", &Portrait::image},      Plane{"clean", &Portrait::clean},
    Plane{"person", &Portrait::person},      Plane{"hair", &Portrait::hair},
    Plane{"skin", &Portrait::skin},          Plane{"face", &Portrait::face},
    Plane{"eyes", &Portrait::eyes},          Plane{"iris", &Portrait::iris},
    Plane{"brows", &Portrait::brows},        Plane{"lips", &Portrait::lips},
    Plane{"moles", &Portrait::moles},        Plane{"freckles", &Portrait::freckles},
    Plane{"wrinkles", &Portrait::wrinkles},  Plane{"dark-circles", &Portrait::darkCircles},
    Plane{"dull-skin", &Portrait::dullSkin}, Plane{"scratches", &Portrait::scratches},
    Plane{"depth", std::monostate()},
};

std::vector<std::uint16_t> depthSamples(const std::vector<float>& depth) {
    std::vector<std::uint16_t> samples;
    samples.reserve(depth.size());
    for (const float d : depth)
        samples.push_back(static_cast<std::uint16_t>(std::lround(std::clamp(d, 0.0f, 1.0f) * 65535.0f)));
    return samples;
}

template <typename Spots>
std::vector<zel_spot> hostSpots(const Spots& spots) {
    std::vector<zel_spot> own;
    own.reserve(spots.size());
    for (const Spot& spot : spots) own.push_back({spot.x, spot.y, spot.radius});
    return own;
}

/// The options as parameters of the one description.
std::vector<Parameter> portraitParameters() {
    std::vector<Parameter> parameters;
    for (const PortraitOption& option : portraitOptions()) {
        const zel_kind kind = !option.choices.empty() ? ZEL_CHOICE
                              : option.whole          ? ZEL_WHOLE_NUMBER
                                                      : ZEL_NUMBER;
        parameters.push_back(
            {option.name, kind, option.minimum, option.maximum, "", option.help, option.choices});
    }
    return parameters;
}

const ParameterInfos& parameterInfos() {
    static const std::vector<Parameter> parameters = portraitParameters();
    static const ParameterInfos infos(parameters);
    return infos;
}

void setOption(PortraitParams& params, const std::string& name, const std::string& value) {
    std::vector<std::string> names;
    for (const PortraitOption& option : portraitOptions()) names.push_back(option.name);
    if (std::find(names.begin(), names.end(), name) == names.end()) {
        const std::string nearest = zellab::nearestWord(name, names);
        throw Failure("the portrait has no parameter '" + name + "'" +
                          (nearest.empty() ? "" : "; did you mean '" + nearest + "'?"),
                      ZEL_UNKNOWN_NAME);
    }
    try {
        setPortraitOption(params, name, value);
    } catch (const std::invalid_argument& problem) {
        throw Failure(problem.what(), ZEL_BAD_VALUE);
    }
}

}  // namespace

size_t zel_portrait_parameter_count(void) {
    return parameterInfos().size();
}

const zel_parameter* zel_portrait_parameter_at(size_t index) {
    return index < parameterInfos().size() ? parameterInfos().data()[index] : nullptr;
}

zel_status zel_draw_portrait(zel_context* context, int width, int height, unsigned seed,
                             const zel_value* values, size_t count, zel_portrait** out) {
    return guardedIn(context, [&] {
        zel_portrait*& result = given(out, "out");
        result = nullptr;
        if (width < 1 || height < 1 || std::max(width, height) > kLongestSide)
            throw badArgument("a portrait has sides of 1 to " + std::to_string(kLongestSide) + " pixels");
        PortraitParams params;
        params.width = width;
        params.height = height;
        params.seed = seed;
        for (const auto& [name, value] : textsOf(values, count)) setOption(params, name, value);
        auto portrait = std::make_unique<zel_portrait>();
        portrait->drawn = drawPortrait(params);
        portrait->depth = depthSamples(portrait->drawn.depth);
        portrait->irises = hostSpots(portrait->drawn.irises);
        portrait->moles = hostSpots(portrait->drawn.moleSpots);
        result = portrait.release();
    });
}

const char* zel_portrait_plane_name(size_t index) {
    return index < kPlanes.size() ? kPlanes[index].name : nullptr;
}

zel_status zel_portrait_plane(zel_portrait* portrait, const char* name, zel_pixels* out) {
    return guarded([&] {
        zel_portrait& own = given(portrait, "portrait");
        const std::string wanted = &given(name, "the plane's name");
        zel_pixels& result = given(out, "out");
        for (const Plane& plane : kPlanes) {
            if (wanted != plane.name) continue;
            if (const auto* image = std::get_if<Image Portrait::*>(&plane.member))
                result = pixelsOver(own.drawn.**image);
            else if (const auto* mask = std::get_if<Mask Portrait::*>(&plane.member))
                result = pixelsOver(own.drawn.**mask);
            else
                result = {own.depth.data(), own.drawn.image.width, own.drawn.image.height, 0, ZEL_GRAY16, 0};
            return;
        }
        throw Failure("a portrait has no plane '" + wanted + "'", ZEL_UNKNOWN_NAME);
    });
}

zel_status zel_portrait_faces(const zel_portrait* portrait, zel_faces** out) {
    return guarded([&] {
        zel_faces*& result = given(out, "out");
        result = nullptr;
        auto list = std::make_unique<zel_faces>();
        list->set = given(portrait, "portrait").drawn.faces;
        result = list.release();
    });
}

zel_status zel_portrait_spots(zel_portrait* portrait, const char* kind, const zel_spot** spots,
                              size_t* count) {
    return guarded([&] {
        const zel_portrait& own = given(portrait, "portrait");
        const std::string_view wanted = &given(kind, "the kind of spots");
        if (wanted != "irises" && wanted != "moles")
            throw Failure("a portrait has irises and moles, no '" + std::string(wanted) + "'",
                          ZEL_UNKNOWN_NAME);
        const auto& found = wanted == "irises" ? own.irises : own.moles;
        given(spots, "spots") = found.data();
        given(count, "count") = found.size();
    });
}

void zel_portrait_destroy(zel_portrait* portrait) {
    delete portrait;
}
