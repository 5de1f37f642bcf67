#include "gimp/run/request.h"

#include <cstddef>
#include <utility>

#include "gimp/picture/targetLayer.h"
#include "gimp/run/refusal.h"
#include "gimp/run/valueText.h"

namespace zelgimp {

namespace {

/// Inputs stand among the values under names that no parameter has.
constexpr const char *kMaskText = "input:mask", *kSecondText = "input:second", *kDepthText = "input:depth";

std::string refusalOf(const zel_effect& effect, const char* what) {
    return std::string(effect.title) + " needs " + what;
}

}  // namespace

Request Request::of(const zel_effect& effect) {
    Request request;
    request.effect = &effect;
    if (effect.mask == ZEL_REQUIRED) request.mask.kind = Source::kSelection;
    for (std::size_t i = 0; i < effect.parameter_count; ++i) {
        const zel_parameter& parameter = *effect.parameters[i];
        if (parameter.default_value)
            request.values[parameter.name] = parameter.default_value;
        else  // must be given: a place in the picture, so its middle
            request.values[parameter.name] =
                textOfNumber(parameter.minimum + (parameter.maximum - parameter.minimum) / 2);
    }
    return request;
}

Meaning meaningOf(const Request& request) {
    const libzel::Values values = valuesOf(request.values);
    auto told = libzel::sized<zel_meaning>();
    libzel::require(
        zel_check_values(request.effect->name, values.list().data(), values.list().size(), &told));
    return {told.uses_faces != 0, told.caution};
}

EffectCall callOf(const Request& request, const TargetLayer& layer, std::shared_ptr<const Rgba> picture) {
    const zel_effect& effect = *request.effect;
    EffectCall call;
    call.effect = &effect;
    call.values = request.values;
    call.picture = std::move(picture);
    if (effect.mask != ZEL_NO) call.mask = readMask(layer, request.mask);
    if (effect.second != ZEL_NO) call.second = readSecond(layer, request.second);
    if (effect.depth != ZEL_NO) call.depth = readDepth(layer, request.depth);
    if (effect.mask == ZEL_REQUIRED && !call.mask)
        throw Refusal(refusalOf(effect, "a mask: a selection, a channel or a layer."));
    if (effect.second == ZEL_REQUIRED && !call.second)
        throw Refusal(refusalOf(effect, "a second layer to take pixels from."));
    if (effect.depth == ZEL_REQUIRED && !call.depth)
        throw Refusal(refusalOf(effect, "a layer that tells the depth."));
    return call;
}

void requireFaces(const zel_effect& effect, const zel_faces* faces) {
    if (effect.faces == ZEL_REQUIRED && zel_faces_count(faces) == 0)
        throw Refusal(refusalOf(effect, "a face, and none was found on this layer."));
}

ValueTexts textsOf(const Request& request) {
    ValueTexts texts = request.values;
    const zel_effect& effect = *request.effect;
    if (effect.mask != ZEL_NO) texts[kMaskText] = textOf(request.mask);
    if (effect.second != ZEL_NO) texts[kSecondText] = textOf(request.second);
    if (effect.depth != ZEL_NO) texts[kDepthText] = textOf(request.depth);
    return texts;
}

void takeTexts(Request& request, gint32 image, const ValueTexts& texts) {
    const auto source = [&](Source& own, zel_need need, const char* name) {
        const auto told = texts.find(name);
        if (need != ZEL_NO && told != texts.end()) own = sourceFromText(image, told->second);
    };
    source(request.mask, request.effect->mask, kMaskText);
    source(request.second, request.effect->second, kSecondText);
    source(request.depth, request.effect->depth, kDepthText);
    for (auto& [name, value] : request.values) {
        const auto told = texts.find(name);
        if (told != texts.end()) value = told->second;
    }
}

}  // namespace zelgimp
