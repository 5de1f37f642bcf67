#include "cli/studio/chainRun.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "cli/failure.h"
#include "cli/library.h"
#include "cli/studio/pixels.h"
#include "frame/shortNumber.h"

namespace zelcli::studio {

namespace {

using Clock = std::chrono::steady_clock;

bool isNumber(zel_kind kind) {
    return kind == ZEL_NUMBER || kind == ZEL_WHOLE_NUMBER;
}

/// A length in pixels of the picture, in pixels of a smaller copy. What is not 0 stays at least a pixel.
std::string scaledLength(const zel_parameter& parameter, const std::string& text, double scale) {
    char* end = nullptr;
    const double length = std::strtod(text.c_str(), &end);
    if (end == text.c_str() || *end || !std::isfinite(length) || length == 0) return text;
    double scaled = length * scale;
    if (parameter.kind == ZEL_WHOLE_NUMBER) scaled = std::round(scaled);
    if (std::abs(scaled) < 1) scaled = length < 0 ? -1 : 1;
    return zellab::shortNumber(std::clamp(scaled, parameter.minimum, parameter.maximum));
}

/// Depth depends on what a step is given, and on words among its values; numbers change how it is used.
std::string depthKey(const std::string& before, const Step& step, const std::string& faces) {
    std::string key = before + step.effect->name + faces + step.mask;
    for (const auto& [name, text] : step.values) {
        const zel_parameter* const parameter = parameterOf(*step.effect, name);
        if (parameter && !isNumber(parameter->kind))
            key.append(1, ';').append(name).append(1, '=').append(text);
    }
    return key;
}

/// Tells the queue how far one step of several is, and ends the call when the result is no longer wanted.
struct StepProgress {
    const WorkQueue::Job& job;
    double begin, share;

    static int tell(void* user, double fraction, const char* stage) {
        const auto& told = *static_cast<const StepProgress*>(user);
        told.job.tell(stage, told.begin + told.share * fraction);
        return told.job.cancelled();
    }
};

}  // namespace

libzel::Values ChainRun::valuesOf(const Step& step, const Sources& sources) const {
    libzel::Values values;
    for (const auto& [name, text] : step.values) {
        const zel_parameter& parameter = *parameterOf(*step.effect, name);
        if (parameter.kind == ZEL_FILE && !text.empty())
            values.set(name, sources.file(text));
        else if (m_scale < 1 && isNumber(parameter.kind) && std::strcmp(parameter.unit, "pixels") == 0)
            values.set(name, scaledLength(parameter, text, m_scale));
        else
            values.set(name, text);
    }
    // A default is a length of the whole picture as well.
    for (std::size_t i = 0; m_scale < 1 && i < step.effect->parameter_count; ++i) {
        const zel_parameter& parameter = *step.effect->parameters[i];
        const bool given = std::any_of(step.values.begin(), step.values.end(),
                                       [&](const auto& value) { return value.first == parameter.name; });
        if (!given && parameter.default_value && std::strcmp(parameter.unit, "pixels") == 0)
            values.set(parameter.name, scaledLength(parameter, parameter.default_value, m_scale));
    }
    return values;
}

StepReport ChainRun::apply(const Step& step, const Chain& chain, const std::string& key, Image& image,
                           const Sources& sources, const WorkQueue::Job& job, std::size_t index) {
    if (step.off || step.strength == 0) return {"off", {}, 0};
    const std::string lacking = whatLacks(step);
    if (!lacking.empty()) return {"waiting", lacking, 0};

    const libzel::Values values = valuesOf(step, sources);
    const auto& list = values.list();
    auto meaning = libzel::sized<zel_meaning>();
    if (zel_check_values(step.effect->name, list.data(), list.size(), &meaning) != ZEL_OK)
        return {"failed", zel_message(), 0};
    const std::string caution = meaning.caution;

    auto inputs = libzel::sized<zel_inputs>();
    inputs.values = list.data();
    inputs.value_count = list.size();
    libzel::Faces given;
    if (meaning.uses_faces && !chain.faces.empty()) {
        zel_faces* faces = nullptr;
        if (zel_faces_from_json(chain.faces.data(), chain.faces.size(), &faces) != ZEL_OK)
            return {"failed", zel_message(), 0};
        given.reset(faces);
        inputs.faces = faces;
    } else if (meaning.uses_faces) {
        inputs.faces = sources.foundFaces();
    }
    if (step.effect->faces == ZEL_REQUIRED && zel_faces_count(inputs.faces) == 0)
        return {"failed", "no face was found", 0};

    Mask mask, depth;
    Image second;
    zel_pixels maskPixels, depthPixels, secondPixels;
    if (!step.mask.empty()) {
        mask = scaledTo(*sources.planes->find(step.mask), image.width, image.height);
        maskPixels = pixelsOf(mask);
        inputs.mask = &maskPixels;
    }
    if (!step.second.empty()) {
        second = scaledTo(sources.second(step.second), image.width, image.height);
        secondPixels = pixelsOf(second);
        inputs.second = &secondPixels;
    }
    const std::string depthName = m_keeping ? depthKey(key, step, chain.faces) : std::string();
    bool estimating = false;
    if (!step.depth.empty()) {
        depth = *sources.planes->find(step.depth);
        depthPixels = pixelsOf(depth);
        inputs.depth = &depthPixels;
    } else if (m_keeping && step.effect->depth != ZEL_NO && step.effect->depth_out != ZEL_NO) {
        const auto kept = m_depths.find(depthName);
        estimating = kept == m_depths.end();
        depth = estimating
                    ? Mask{image.width, image.height, std::vector<unsigned char>(image.rgba.size() / 4)}
                    : kept->second;
        depthPixels = pixelsOf(depth);
        (estimating ? inputs.depth_out : inputs.depth) = &depthPixels;
    }

    const double share = 1.0 / static_cast<double>(chain.steps.size());
    StepProgress told{job, share * static_cast<double>(index), share};
    inputs.progress = StepProgress::tell;
    inputs.progress_user = &told;
    const auto start = Clock::now();
    const Image before = step.strength < 1 ? image : Image();
    const zel_pixels pixels = pixelsOf(image);
    const zel_status status = zel_apply(library(), step.effect->name, &pixels, &inputs);
    if (status == ZEL_CANCELLED) throw Superseded();
    if (status != ZEL_OK) return {"failed", zel_message(), 0};
    if (step.strength < 1) blend(before, image, step.strength);
    if (estimating) {
        m_depths.clear();  // one is enough: that of the picture as it is now
        m_depths.emplace(depthName, std::move(depth));
    }
    return {"done", caution, std::chrono::duration<double>(Clock::now() - start).count()};
}

const Image& ChainRun::run(const Image& original, const Chain& chain, const Sources& sources,
                           const WorkQueue::Job& job, std::vector<StepReport>& reports) {
    std::string key = chain.faces;
    std::vector<std::string> keys;
    for (const Step& step : chain.steps) keys.push_back(key += '\n' + step.key);

    // What is still as it was.
    std::size_t same = 0;
    while (same < keys.size() && same < m_results.size() && m_results[same].key == keys[same]) ++same;
    if (!m_keeping && (same < keys.size() || same < m_results.size())) same = 0;
    m_results.resize(same);
    for (const Result& result : m_results) reports.push_back(result.report);

    Image held;
    for (std::size_t i = same; i < chain.steps.size(); ++i) {
        job.requireWanted();
        Image image;
        if (i == 0)
            image = original;
        else if (m_keeping)
            image = m_results[i - 1].image;
        else
            image = std::move(held);
        const StepReport report =
            apply(chain.steps[i], chain, i == 0 ? chain.faces : keys[i - 1], image, sources, job, i);
        reports.push_back(report);
        const bool last = i + 1 == chain.steps.size();
        if (m_keeping || last)
            m_results.push_back({keys[i], std::move(image), report});
        else {
            held = std::move(image);
            m_results.push_back({keys[i], {}, report});
        }
    }
    return m_results.empty() ? original : m_results.back().image;
}

}  // namespace zelcli::studio
