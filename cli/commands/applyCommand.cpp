#include "applyCommand.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <new>
#include <optional>

#include "cube/cubeFile.h"
#include "effectRegistry.h"
#include "faces/faceFinder.h"
#include "facesJson.h"
#include "pictures/jpegFile.h"
#include "pictures/pngFile.h"
#include "pictures/sheet.h"
#include "pictures/writePicture.h"
#include "run/assets.h"
#include "run/jobs.h"
#include "run/logCapture.h"
#include "run/messages.h"

namespace zel {

namespace {

using Clock = std::chrono::steady_clock;

/// Share of an input's progress bar that reading, and reading and the effect together, take.
constexpr double kReadShare = 0.1, kEffectShare = 0.9;

/// Faces found on a picture of other proportions do not fit; a rounded reduction does.
constexpr double kProportionTolerance = 0.02;

/// An option that the effect needs must be there, and one that it cannot use must not.
void checkNeed(const Effect& effect, Need need, const std::string& value, const char* option) {
    if (need == Need::required && value.empty()) throw UsageError(effect.name + " needs " + option);
    if (need == Need::no && !value.empty()) throw UsageError(effect.name + " takes no " + option);
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
    ApplyRun(const ApplyOptions& options, const Effect& effect, ParameterValues values)
        : m_options(options), m_effect(effect), m_values(std::move(values)), m_messages(options.quiet) {}

    int run(const ApplyPlan& plan);

private:
    void prepare(const ApplyPlan& plan);
    void process(std::size_t index, const ApplyItem& item);
    void transform(std::size_t index, const ApplyItem& item);
    FaceSet facesFor(std::size_t index, const ApplyItem& item, const Image& image);
    FaceSet foundFaces(std::size_t index, const ApplyItem& item, const Image& image);

    const ApplyOptions& m_options;
    const Effect& m_effect;
    const ParameterValues m_values;
    Messages m_messages;
    std::optional<LogCapture> m_capture;
    std::optional<Mask> m_mask, m_depth;
    std::optional<Image> m_second;
    std::string m_cube;  // as the effects read it
    std::atomic<bool> m_failed{false};
};

int ApplyRun::run(const ApplyPlan& plan) {
    m_capture.emplace(m_messages, m_options.verbose);
    try {
        prepare(plan);
    } catch (const FileFailure& failure) {
        m_messages.error(failure.file(), failure.what());
        return kWorkFailed;
    }
    if (m_effect.caution)
        if (const std::string caution = m_effect.caution(m_values); !caution.empty())
            m_messages.note("", caution);
    m_messages.startProgress(plan.items.size());
    runJobs(plan.items.size(), m_options.jobs, [&](std::size_t i) { process(i, plan.items[i]); });
    m_messages.endProgress();
    m_capture.reset();
    return m_failed ? kWorkFailed : kDone;
}

/// What can fail for all inputs at once: shared pictures, assets, folders.
void ApplyRun::prepare(const ApplyPlan& plan) {
    if (!m_options.mask.empty())
        m_mask = namingFile(m_options.mask, [&] { return readMask(UserPath(m_options.mask).real); });
    if (!m_options.depth.empty())
        m_depth = namingFile(m_options.depth, [&] { return readMask(UserPath(m_options.depth).real); });
    if (!m_options.second.empty())
        m_second = namingFile(m_options.second,
                              [&] { return readPicture(UserPath(m_options.second).real, false).image; });
    if (!m_options.cube.empty()) {
        m_cube = UserPath(m_options.cube).real;
        namingFile(m_options.cube, [&] { readCubeFile(m_cube); });
    }
    for (const UserPath& folder : plan.folders) {
        std::error_code error;
        std::filesystem::create_directories(folder.real, error);
        if (error) throw FileFailure(folder.shown, "cannot be made (" + error.message() + ")");
    }
    namingFile(m_options.assets, [&] { enterAssets(m_options.assets); });
}

void ApplyRun::process(std::size_t index, const ApplyItem& item) {
    const auto start = Clock::now();
    bool failed = false;
    std::string file, why;
    m_capture->enter(item.input.shown);
    try {
        namingFile(item.input.shown, [&] { transform(index, item); });
    } catch (const FileFailure& failure) {
        failed = true;
        file = failure.file();
        why = failure.what();
    }
    m_capture->leave(item.input.shown);
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
    LoadedPicture picture = readPicture(item.input.real, m_options.scrambled);
    for (const auto& note : picture.notes) m_messages.note(item.input.shown, note);
    Image& image = picture.image;
    const FaceSet faces = facesFor(index, item, image);
    const Image before = item.sheet.shown.empty() ? Image() : image;

    Mask maskOut, depthOut;
    EffectRun run{image,
                  faces,
                  m_mask ? &*m_mask : nullptr,
                  m_second ? &*m_second : nullptr,
                  m_values,
                  [&](const std::string& stage, double done01) {
                      m_messages.progress(
                          index, stage,
                          kReadShare + (kEffectShare - kReadShare) * std::clamp(done01, 0.0, 1.0));
                  },
                  m_cube,
                  item.maskOut.shown.empty() ? nullptr : &maskOut,
                  m_depth ? &*m_depth : nullptr,
                  item.depthOut.shown.empty() ? nullptr : &depthOut};
    run.progress(m_effect.name, 0);
    m_effect.run(run);

    m_messages.progress(index, "writing", kEffectShare);
    if (formatOfSuffix(item.output.real) == PictureFormat::jpeg && !jpegHoldsExif(image.exif.size()))
        m_messages.note(item.output.shown, "its EXIF data is too large for JPEG and is left out");
    namingFile(item.output.shown, [&] { writePicture(item.output.real, image); });
    writePlane(item.maskOut, maskOut);
    writePlane(item.depthOut, depthOut);
    if (!item.sheet.shown.empty())
        namingFile(item.sheet.shown,
                   [&] { writePicture(item.sheet.real, makeSheet(before, image, m_effect.name)); });
}

/// An optional need of faces is content without them.
FaceSet ApplyRun::foundFaces(std::size_t index, const ApplyItem& item, const Image& image) {
    const bool needed = m_effect.faces == Need::required;
    m_messages.progress(index, "finding faces", kReadShare);
    FaceSet found{image.width, image.height, {}};
    try {
        FaceDetector detector(detectorFolder());
        found = findFaces(image, detector);
    } catch (const DetectorMissing& missing) {
        if (needed) throw Failure(std::string(missing.what()) + "; or give --faces");
        m_messages.note(item.input.shown, std::string(missing.what()) + "; going on without faces");
        return found;
    }
    if (found.faces.empty() && needed) throw Failure("no face was found; --faces can tell where one is");
    m_messages.note(item.input.shown, describeFaces(found));
    return found;
}

FaceSet ApplyRun::facesFor(std::size_t index, const ApplyItem& item, const Image& image) {
    const bool unused = m_effect.faces == Need::no || (m_effect.usesFaces && !m_effect.usesFaces(m_values));
    if (item.faces.shown.empty()) return unused ? FaceSet() : foundFaces(index, item, image);
    FaceSet faces = namingFile(item.faces.shown, [&] { return readFaces(item.faces.real); });
    const double proportion = static_cast<double>(image.width) / image.height;
    if (std::abs(proportion * faces.height / faces.width - 1.0) > kProportionTolerance)
        m_messages.note(item.faces.shown,
                        "its faces were found on a picture of other proportions than " + item.input.shown);
    return faces;
}

}  // namespace

int runApply(const ApplyOptions& options) {
    const Effect& effect = findEffect(options.effect);
    ParameterValues values = parseValues(effect, options.assignments);
    // Faces that are needed and not given are found.
    checkNeed(effect, effect.faces == Need::no ? Need::no : Need::optional, options.faces, "--faces");
    checkNeed(effect, effect.mask, options.mask, "--mask");
    checkNeed(effect, effect.second, options.second, "--second");
    checkNeed(effect, effect.cube, options.cube, "--cube");
    checkNeed(effect, effect.depth, options.depth, "--depth");
    checkNeed(effect, effect.maskOut, options.maskOut, "--mask-out");
    checkNeed(effect, effect.depthOut, options.depthOut, "--depth-out");
    const ApplyPlan plan = planApply(options);
    return ApplyRun(options, effect, std::move(values)).run(plan);
}

}  // namespace zel
