#include "cli/commands/applyCommand.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <new>
#include <optional>

#include "cli/drawing/sheet.h"
#include "cli/files/facesFile.h"
#include "cli/files/pngWriter.h"
#include "cli/files/writePicture.h"
#include "cli/library.h"
#include "cli/run/jobs.h"
#include "cli/run/messages.h"

namespace zelcli {

namespace {

using Clock = std::chrono::steady_clock;

/// Share of an input's progress bar that reading, and reading and the effect together, take.
constexpr double kReadShare = 0.1, kEffectShare = 0.9;

/// Faces found on a picture of other proportions do not fit; a rounded reduction does.
constexpr double kProportionTolerance = 0.02;

/// An option that the effect needs must be there, and one that it cannot use must not.
void checkNeed(const zel_effect& effect, zel_need need, const std::string& value, const char* option) {
    const std::string name = effect.name;
    if (need == ZEL_REQUIRED && value.empty()) throw UsageError(name + " needs " + option);
    if (need == ZEL_NO && !value.empty()) throw UsageError(name + " takes no " + option);
}

/// Runs work() and gives every failure the name of its file.
template <typename Work>
auto namingFile(const std::string& file, const Work& work) {
    try {
        return work();
    } catch (const FileFailure&) {
        throw;
    } catch (const Failure& failure) {
        throw FileFailure(file, failure.what());
    } catch (const std::bad_alloc&) {
        throw FileFailure(file, "there is not enough memory for it");
    } catch (const std::exception& problem) {
        throw FileFailure(file, problem.what());
    }
}

/// Writes what an effect gave back, where it was asked for.
void writePlane(const UserPath& path, const Mask& plane) {
    if (!path.shown.empty())
        namingFile(path.shown, [&] { writeFileSafely(path.real, encodeGrayPng(plane)); });
}

std::string secondsText(Clock::duration duration) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f s", std::chrono::duration<double>(duration).count());
    return text;
}

/// One run of the command: what all inputs share.
class ApplyRun {
public:
    ApplyRun(const ApplyOptions& options, const zel_effect& effect, libzel::Values values)
        : m_options(options), m_effect(effect), m_values(std::move(values)), m_messages(options.quiet) {}

    int run(const ApplyPlan& plan);

private:
    void prepare(const ApplyPlan& plan);
    void process(std::size_t index, const ApplyItem& item);
    void transform(std::size_t index, const ApplyItem& item);
    void applyEffect(std::size_t index, const ApplyItem& item, Image& image, const zel_faces* faces,
                     Mask& maskOut, Mask& depthOut);
    libzel::Faces facesFor(std::size_t index, const ApplyItem& item, Image& image);
    libzel::Faces foundFaces(std::size_t index, const ApplyItem& item, Image& image);

    const ApplyOptions& m_options;
    const zel_effect& m_effect;
    libzel::Values m_values;
    zel_meaning m_meaning = libzel::sized<zel_meaning>();
    Messages m_messages;
    std::optional<LibraryVoice> m_voice;
    std::optional<Mask> m_mask, m_depth;
    std::optional<Image> m_second;
    std::atomic<bool> m_failed{false};
};

int ApplyRun::run(const ApplyPlan& plan) {
    try {
        m_voice.emplace(m_messages, m_options.verbose, m_options.assets);
        prepare(plan);
    } catch (const FileFailure& failure) {
        m_messages.error(failure.file(), failure.what());
        return kWorkFailed;
    }
    if (*m_meaning.caution) m_messages.note("", m_meaning.caution);
    m_messages.startProgress(plan.items.size());
    runJobs(plan.items.size(), m_options.jobs, [&](std::size_t i) { process(i, plan.items[i]); });
    m_messages.endProgress();
    return m_failed ? kWorkFailed : kDone;
}

/// What can fail for all inputs at once: shared pictures, assets, folders.
void ApplyRun::prepare(const ApplyPlan& plan) {
    if (!m_options.mask.empty())
        m_mask = namingFile(m_options.mask, [&] { return readMask(UserPath(m_options.mask).real); });
    if (!m_options.depth.empty())
        m_depth = namingFile(m_options.depth, [&] { return readMask(UserPath(m_options.depth).real); });
    if (!m_options.second.empty())
        m_second =
            namingFile(m_options.second, [&] { return readPicture(UserPath(m_options.second)).image; });
    if (!m_options.cube.empty()) m_values.set("cube", m_options.cube);
    const auto& values = m_values.list();
    require(zel_check_values(m_effect.name, values.data(), values.size(), &m_meaning));
    for (const UserPath& folder : plan.folders) {
        std::error_code error;
        std::filesystem::create_directories(folder.real, error);
        if (error) throw FileFailure(folder.shown, "cannot be made (" + error.message() + ")");
    }
}

void ApplyRun::process(std::size_t index, const ApplyItem& item) {
    const auto start = Clock::now();
    bool failed = false;
    std::string file, why;
    m_voice->enter(item.input.shown);
    try {
        namingFile(item.input.shown, [&] { transform(index, item); });
    } catch (const FileFailure& failure) {
        failed = true;
        file = failure.file();
        why = failure.what();
    }
    m_voice->leave(item.input.shown);
    if (failed) {
        m_failed = true;
        m_messages.error(file, why);
    }
    m_messages.finished(
        index, item.input.shown + " -> " + item.output.shown + " (" + secondsText(Clock::now() - start) + ")",
        failed);
}

void ApplyRun::transform(std::size_t index, const ApplyItem& item) {
    m_messages.progress(index, "reading", 0);
    LoadedPicture picture = readPicture(item.input, {.scrambled = m_options.scrambled});
    for (const auto& note : picture.notes) m_messages.note(item.input.shown, note);
    Image& image = picture.image;
    const libzel::Faces faces = facesFor(index, item, image);
    const Image before = item.sheet.shown.empty() ? Image() : image;
    Mask maskOut, depthOut;
    applyEffect(index, item, image, faces.get(), maskOut, depthOut);

    m_messages.progress(index, "writing", kEffectShare);
    const auto notes = namingFile(item.output.shown, [&] {
        return writePicture(item.output, image, formatOfSuffix(item.output.real).value_or(PictureFormat::png),
                            {});
    });
    for (const auto& note : notes) m_messages.note(item.output.shown, note);
    writePlane(item.maskOut, maskOut);
    writePlane(item.depthOut, depthOut);
    if (!item.sheet.shown.empty())
        namingFile(item.sheet.shown,
                   [&] { writePicture(item.sheet.real, makeSheet(before, image, m_effect.name)); });
}

/// Runs the effect on the picture, and fills the planes that were asked for.
void ApplyRun::applyEffect(std::size_t index, const ApplyItem& item, Image& image, const zel_faces* faces,
                           Mask& maskOut, Mask& depthOut) {
    struct Told {
        Messages& messages;
        std::size_t index;
    } told{m_messages, index};
    auto inputs = libzel::sized<zel_inputs>();
    const auto& values = m_values.list();
    inputs.values = values.data();
    inputs.value_count = values.size();
    inputs.faces = faces;
    inputs.progress_user = &told;
    inputs.progress = [](void* user, double fraction, const char* stage) {
        const auto& to = *static_cast<Told*>(user);
        to.messages.progress(to.index, stage, kReadShare + (kEffectShare - kReadShare) * fraction);
        return 0;
    };
    zel_pixels mask, second, depth, maskPlane, depthPlane;
    const auto give = [](auto& own, zel_pixels& pixels) {
        pixels = pixelsOf(own);
        return &pixels;
    };
    const auto giveEmpty = [&](Mask& own, zel_pixels& pixels) {
        own = {image.width, image.height, std::vector<unsigned char>(image.rgba.size() / 4)};
        return give(own, pixels);
    };
    if (m_mask) inputs.mask = give(*m_mask, mask);
    if (m_second) inputs.second = give(*m_second, second);
    if (m_depth) inputs.depth = give(*m_depth, depth);
    if (!item.maskOut.shown.empty()) inputs.mask_out = giveEmpty(maskOut, maskPlane);
    if (!item.depthOut.shown.empty()) inputs.depth_out = giveEmpty(depthOut, depthPlane);
    const zel_pixels picture = pixelsOf(image);
    require(zel_apply(library(), m_effect.name, &picture, &inputs));
}

/// An optional need of faces is content without them.
libzel::Faces ApplyRun::foundFaces(std::size_t index, const ApplyItem& item, Image& image) {
    const bool needed = m_effect.faces == ZEL_REQUIRED;
    m_messages.progress(index, "finding faces", kReadShare);
    zel_faces* faces = nullptr;
    const zel_pixels picture = pixelsOf(image);
    const zel_status status = zel_find_faces(library(), &picture, &faces);
    libzel::Faces found(faces);
    if (status == ZEL_NOT_AVAILABLE && !needed) {
        m_messages.note(item.input.shown, std::string(zel_message()) + "; going on without faces");
        return found;
    }
    if (status == ZEL_NOT_AVAILABLE) throw Failure(std::string(zel_message()) + "; or give --faces");
    require(status);
    if (zel_faces_count(faces) == 0 && needed)
        throw Failure("no face was found; --faces can tell where one is");
    m_messages.note(item.input.shown, describeFaces(faces));
    return found;
}

libzel::Faces ApplyRun::facesFor(std::size_t index, const ApplyItem& item, Image& image) {
    if (item.faces.shown.empty()) return m_meaning.uses_faces ? foundFaces(index, item, image) : nullptr;
    libzel::Faces faces = namingFile(item.faces.shown, [&] { return readFaces(item.faces.real); });
    int width = 0, height = 0;
    require(zel_faces_size(faces.get(), &width, &height));
    const double proportion = static_cast<double>(image.width) / image.height;
    if (std::abs(proportion * height / width - 1.0) > kProportionTolerance)
        m_messages.note(item.faces.shown,
                        "its faces were found on a picture of other proportions than " + item.input.shown);
    return faces;
}

}  // namespace

int runApply(const ApplyOptions& options) {
    const zel_effect& effect = findEffect(options.effect);
    libzel::Values values = parseValues(effect, options.assignments);
    // Faces that are needed and not given are found.
    checkNeed(effect, effect.faces == ZEL_NO ? ZEL_NO : ZEL_OPTIONAL, options.faces, "--faces");
    checkNeed(effect, effect.mask, options.mask, "--mask");
    checkNeed(effect, effect.second, options.second, "--second");
    checkNeed(effect, takesCube(effect) ? ZEL_OPTIONAL : ZEL_NO, options.cube, "--cube");
    checkNeed(effect, effect.depth, options.depth, "--depth");
    checkNeed(effect, effect.mask_out, options.maskOut, "--mask-out");
    checkNeed(effect, effect.depth_out, options.depthOut, "--depth-out");
    const ApplyPlan plan = planApply(options);
    return ApplyRun(options, effect, std::move(values)).run(plan);
}

}  // namespace zelcli
