#include <algorithm>
#include <cstring>
#include <deque>
#include <map>

#include "libzel/call.h"
#include "libzel/cube/cubeFile.h"
#include "libzel/effectRegistry.h"
#include "libzel/effects/effectParts.h"
#include "libzel/faces/faceList.h"
#include "libzel/parameterInfos.h"
#include "libzel/pixels.h"
#include "libzel/progress.h"

namespace {

using namespace zel;

/// The effects as a host sees them; made once, and never changed.
class EffectInfos {
public:
    EffectInfos() {
        for (const Effect& effect : allEffects()) {
            const ParameterInfos& parameters = m_parameters.emplace_back(effect.parameters);
            m_infos.push_back({effect.name.c_str(), effect.title.c_str(), effect.summary.c_str(),
                               effect.operation.c_str(), effect.example.c_str(), parameters.data(),
                               parameters.size(), effect.faces, effect.mask, effect.second, effect.depth,
                               effect.maskOut, effect.depthOut, effect.gl, effect.advice.c_str()});
        }
    }
    const std::deque<zel_effect>& all() const { return m_infos; }

private:
    std::deque<ParameterInfos> m_parameters;
    std::deque<zel_effect> m_infos;
};

const std::deque<zel_effect>& effectInfos() {
    static const EffectInfos infos;
    return infos.all();
}

/// What the effect needs must be there, and what it cannot use must not.
void checkNeed(const Effect& effect, zel_need need, bool isGiven, const char* what) {
    if (need == ZEL_REQUIRED && !isGiven) throw Failure(effect.name + " needs " + what, ZEL_MISSING_INPUT);
    if (need == ZEL_NO && isGiven) throw Failure(effect.name + " takes no " + what, ZEL_MISSING_INPUT);
}

void checkInputs(const Effect& effect, const zel_inputs& inputs) {
    checkNeed(effect, effect.faces, zel_faces_count(inputs.faces) > 0, "faces");
    checkNeed(effect, effect.mask, inputs.mask, "mask");
    checkNeed(effect, effect.second, inputs.second, "second picture");
    checkNeed(effect, effect.depth, inputs.depth, "depth map");
    checkNeed(effect, effect.maskOut, inputs.mask_out, "mask to fill");
    checkNeed(effect, effect.depthOut, inputs.depth_out, "depth map to fill");
}

/// One call of zel_apply: the caller's inputs as the engine takes them.
class Application {
public:
    Application(zel_context& context, const Effect& effect, const zel_pixels& pixels,
                const zel_inputs& inputs)
        : m_context(context), m_effect(effect), m_pixels(pixels), m_inputs(inputs) {
        if (inputs.mask) {
            checkGrey(inputs.mask, "the mask");
            m_mask = maskOf(*inputs.mask);
        }
        if (inputs.second) {
            checkColour(inputs.second, "the second picture");
            m_second = imageOf(*inputs.second);
        }
        if (inputs.depth) {
            checkGrey(inputs.depth, "the depth map");
            m_depth = maskOf(*inputs.depth);
        }
        if (inputs.mask_out) checkPlane(inputs.mask_out, pixels.width, pixels.height, "the mask to fill");
        if (inputs.depth_out)
            checkPlane(inputs.depth_out, pixels.width, pixels.height, "the depth map to fill");
    }

    void run(const ParameterValues& values) {
        const Progress progress(m_inputs.progress, m_inputs.progress_user);
        progress.tell(m_effect.name, 0);
        Image image = imageOf(m_pixels);
        Mask maskOut, depthOut;
        EffectRun run{image,
                      m_inputs.faces ? m_inputs.faces->set : kNoFaces,
                      m_inputs.mask ? &m_mask : nullptr,
                      m_inputs.second ? &m_second : nullptr,
                      values,
                      [&progress](const std::string& stage, double done01) { progress.tell(stage, done01); },
                      m_inputs.mask_out ? &maskOut : nullptr,
                      m_inputs.depth ? &m_depth : nullptr,
                      m_inputs.depth_out ? &depthOut : nullptr,
                      {m_context.settings.assets, m_context.gl, &m_context.depthNetworks}};
        m_effect.run(run);
        progress.tell("done", 1);
        // Nothing can fail any more.
        writeBack(image, m_pixels);
        if (!maskOut.samples.empty()) writeBack(maskOut, *m_inputs.mask_out);
        if (!depthOut.samples.empty()) writeBack(depthOut, *m_inputs.depth_out);
    }

private:
    static inline const FaceSet kNoFaces{};

    zel_context& m_context;
    const Effect& m_effect;
    const zel_pixels& m_pixels;
    const zel_inputs& m_inputs;
    Mask m_mask, m_depth;
    Image m_second;
};

const Effect& effectNamed(const char* name) {
    return findEffect(&given(name, "the effect's name"));
}

}  // namespace

size_t zel_effect_count(void) {
    return effectInfos().size();
}

const zel_effect* zel_effect_at(size_t index) {
    const auto& infos = effectInfos();
    return index < infos.size() ? &infos[index] : nullptr;
}

zel_status zel_effect_find(const char* name, const zel_effect** out) {
    return guarded([&] {
        const zel_effect*& result = given(out, "out");
        result = nullptr;
        const Effect& effect = effectNamed(name);
        result = zel_effect_at(static_cast<std::size_t>(&effect - allEffects().data()));
    });
}

zel_status zel_check_values(const char* effectName, const zel_value* values, size_t count,
                            zel_meaning* meaning) {
    return guarded([&] {
        const Effect& effect = effectNamed(effectName);
        const ParameterValues checked = checkedValues(effect, textsOf(values, count));
        for (const Parameter& parameter : effect.parameters)
            if (parameter.name == kCube && !checked.text(kCube).empty()) readGivenCube(checked.text(kCube));
        if (!meaning) return;
        // As much of it as the caller's version knows.
        zel_meaning told = received(meaning, "meaning");
        const std::size_t known = commonSize<zel_meaning>(told.struct_size);
        static thread_local std::string caution;
        caution = effect.caution ? effect.caution(checked) : std::string();
        told.uses_faces = effect.faces != ZEL_NO && (!effect.usesFaces || effect.usesFaces(checked));
        told.caution = caution.c_str();
        std::memcpy(meaning, &told, known);
    });
}

zel_status zel_apply(zel_context* context, const char* effectName, const zel_pixels* pixels,
                     const zel_inputs* given) {
    return guardedIn(context, [&] {
        const Effect& effect = effectNamed(effectName);
        const zel_inputs inputs = received(given, "inputs");
        const ParameterValues values = checkedValues(effect, textsOf(inputs.values, inputs.value_count));
        checkColour(pixels, "the picture");
        if (inputs.faces) zel::given(inputs.faces, "faces");
        checkInputs(effect, inputs);
        Application(*context, effect, *pixels, inputs).run(values);
    });
}
