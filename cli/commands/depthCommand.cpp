#include "cli/commands/depthCommand.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <optional>

#include "cli/commands/applyCommand.h"
#include "cli/commands/applyPlan.h"
#include "cli/commands/maskRemark.h"
#include "cli/drawing/depthColours.h"
#include "cli/drawing/sheet.h"
#include "cli/files/pngWriter.h"
#include "cli/files/writePicture.h"
#include "cli/library.h"
#include "cli/run/batchReport.h"
#include "cli/run/jobs.h"
#include "cli/run/messages.h"
#include "cli/run/namingFile.h"

namespace zelcli {

namespace {

namespace fs = std::filesystem;

/// What `--set` tells.
struct DepthValues {
    std::string model;  // empty: not given
    zel_subject subject = ZEL_SUBJECT_AUTO;
};

DepthValues valuesOf(const std::vector<std::string>& assignments) {
    const std::map<std::string, zel_subject> subjects{
        {"auto", ZEL_SUBJECT_AUTO}, {"person", ZEL_SUBJECT_PERSON}, {"none", ZEL_SUBJECT_NONE}};
    DepthValues values;
    for (const std::string& word : assignments) {
        const auto valueAfter = [&](const std::string& name) {
            return word.rfind(name, 0) == 0 ? word.substr(name.size()) : std::string();
        };
        const auto subject = subjects.find(valueAfter("subject="));
        if (const std::string model = valueAfter("model="); !model.empty())
            values.model = model;
        else if (subject != subjects.end())
            values.subject = subject->second;
        else
            throw UsageError(
                "zel depth has the parameters model=FILE and subject=auto, person or none; not '" + word +
                "'");
    }
    return values;
}

/// Outputs go where `zel apply` would put them, and maps in a folder are lossless.
ApplyPlan planDepth(const DepthOptions& options) {
    ApplyOptions apply;
    apply.inputs = options.inputs;
    apply.output = options.output;
    apply.compare = options.compare;
    apply.format = "png";
    apply.recursive = options.recursive;
    apply.steps.emplace_back().maskOut = options.personMask;
    apply.maskOutName = "--person-mask";
    return planApply(apply);
}

Image greyPicture(const Mask& mask) {
    Image image{mask.width, mask.height, {}};
    image.rgba.reserve(4 * mask.samples.size());
    for (const unsigned char v : mask.samples) image.rgba.insert(image.rgba.end(), {v, v, v, 255});
    return image;
}

void writeMap(const UserPath& path, const Mask& map) {
    const auto format = formatOfSuffix(path.real).value_or(PictureFormat::png);
    if (format == PictureFormat::png)
        writeBytes(path, encodeGrayPng(map));
    else
        writePicture(path, greyPicture(map), format, {.lossless = true});
}

/// One run of the command: the network and the mask that all inputs share.
class DepthRun {
public:
    DepthRun(const DepthOptions& options, DepthValues values, const JobShare& share)
        : m_options(options), m_values(std::move(values)), m_share(share), m_messages(options.quiet) {}

    int run(const ApplyPlan& plan) {
        const auto start = std::chrono::steady_clock::now();
        try {
            prepare(plan);
        } catch (const FileFailure& failure) {
            m_messages.error(failure.file(), failure.what());
            return kWorkFailed;
        }
        for (const auto& [folder, why] : plan.failures) m_messages.error(folder, why);
        m_outcomes.resize(plan.items.size());
        m_messages.startProgress(plan.items.size());
        runJobs(plan.items.size(), m_share.jobs, [&](std::size_t i) { attempt(i, plan.items[i]); });
        m_messages.endProgress();
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        if (plan.items.size() > 1) m_messages.closing(closingLine(m_outcomes, time.count(), false));
        const bool failed = std::any_of(m_outcomes.begin(), m_outcomes.end(), [](const Outcome& outcome) {
            return outcome.state == Outcome::State::failed;
        });
        return failed || !plan.failures.empty() ? kWorkFailed : kDone;
    }

private:
    void attempt(std::size_t index, const ApplyItem& item) {
        m_voice->enter(item.input.shown);
        m_outcomes[index].state = Outcome::State::done;
        try {
            namingFile(item.input.shown, [&] { process(index, item); });
        } catch (const FileFailure& failure) {
            m_messages.error(failure.file(), failure.what());
            m_outcomes[index].state = Outcome::State::failed;
        }
        m_voice->leave(item.input.shown);
        m_messages.finished(index, item.input.shown + " -> " + item.output.shown,
                            m_outcomes[index].state == Outcome::State::failed);
    }

    void prepare(const ApplyPlan& plan) {
        m_voice.emplace(m_messages, m_options.verbose, m_options.assets, m_share.threads);
        if (!m_options.mask.empty())
            m_mask = namingFile(m_options.mask, [&] { return readMask(UserPath(m_options.mask).real); });
        for (const UserPath& folder : plan.folders)
            namingFile(folder.shown, [&] { fs::create_directories(folder.real); });
        const zel_status status = zel_check_depth(library(), network());
        if (status == ZEL_BAD_ASSET)
            throw FileFailure("", std::string(zel_message()) + "; --set model=FILE names another one");
        namingFile("", [&] { require(status); });
    }

    void process(std::size_t index, const ApplyItem& item) {
        m_messages.progress(index, "reading", 0);
        LoadedPicture picture = readPicture(item.input);
        for (const auto& note : picture.notes) m_messages.note(item.input.shown, note);
        noteMask(picture.image);
        m_messages.progress(index, "estimating depth", 0.1);
        Mask person;
        const Mask map = mapOf(item, picture.image, person);
        m_messages.progress(index, "writing", 0.9);
        if (item.format == PictureFormat::jpeg)
            m_messages.note(item.output.shown, "a JPEG file blurs the edges of depth; .png keeps them");
        namingFile(item.output.shown, [&] { writeMap(item.output, map); });
        if (!item.maskOut.shown.empty())
            namingFile(item.maskOut.shown, [&] { writeMap(item.maskOut, person); });
        if (item.sheet.shown.empty()) return;
        const Image grey = greyPicture(map), colours = colourDepth(map);
        namingFile(item.sheet.shown, [&] {
            writePicture(item.sheet.real, makeSheet({{picture.image, "picture"},
                                                     {grey, m_options.raw ? "depth, unrefined" : "depth"},
                                                     {colours, "near is warm"}}));
        });
    }

    /// The file that was told; null for the library's own.
    const char* network() const { return m_values.model.empty() ? nullptr : m_values.model.c_str(); }

    /// Those of the subject are kept whole; without any finder of faces there is none.
    libzel::Faces facesIn(const ApplyItem& item, Image& image) {
        if (m_mask || m_options.raw || m_values.subject == ZEL_SUBJECT_NONE) return nullptr;
        zel_faces* faces = nullptr;
        const zel_pixels picture = pixelsOf(image);
        const zel_status status = zel_find_faces(library(), &picture, &faces);
        if (status == ZEL_NOT_AVAILABLE)
            m_messages.note(item.input.shown, std::string(zel_message()) + "; going on without faces");
        else
            require(status);
        return libzel::Faces(faces);
    }

    Mask mapOf(const ApplyItem& item, Image& image, Mask& personOut) {
        const auto plane = [&] {
            return Mask{image.width, image.height, std::vector<unsigned char>(image.rgba.size() / 4)};
        };
        auto options = libzel::sized<zel_depth_options>();
        zel_pixels person, personPlane;
        if (m_mask) {
            person = pixelsOf(*m_mask);
            options.person = &person;
        }
        const libzel::Faces faces = facesIn(item, image);
        options.faces = faces.get();
        options.subject = m_values.subject;
        if (!item.maskOut.shown.empty()) {
            personOut = plane();
            personPlane = pixelsOf(personOut);
            options.person_out = &personPlane;
        }
        options.network = network();
        options.raw = m_options.raw;
        Mask map = plane();
        const zel_pixels picture = pixelsOf(image), out = pixelsOf(map);
        require(zel_estimate_depth(library(), &picture, &options, &out));
        return map;
    }

    void noteMask(const Image& image) {
        if (!m_mask) return;
        if (const std::string remark = maskRemark(*m_mask, image); !remark.empty())
            m_messages.note(m_options.mask, remark);
    }

    const DepthOptions& m_options;
    const DepthValues m_values;
    const JobShare m_share;
    Messages m_messages;
    std::optional<LibraryVoice> m_voice;
    std::optional<Mask> m_mask;
    std::vector<Outcome> m_outcomes;
};

}  // namespace

int runDepth(const DepthOptions& options) {
    DepthValues values = valuesOf(options.assignments);
    if (options.raw && !options.mask.empty())
        throw UsageError("--raw takes no --mask: the mask is a part of the refinement");
    if (options.raw && !options.personMask.empty())
        throw UsageError("--raw makes no --person-mask: the mask is a part of the refinement");
    const ApplyPlan plan = planDepth(options);
    return DepthRun(options, std::move(values), shareJobs(options.jobs, plan.items.size())).run(plan);
}

}  // namespace zelcli
