#include "cli/commands/depthCommand.h"

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
#include "cli/run/messages.h"

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

/// Outputs go where `zel apply` would put them.
ApplyPlan planDepth(const DepthOptions& options) {
    ApplyOptions apply;
    apply.inputs = options.inputs;
    apply.output = options.output;
    apply.compare = options.compare;
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

void writeMap(const fs::path& path, const Mask& map) {
    if (formatOfSuffix(path) == PictureFormat::png)
        writeFileSafely(path, encodeGrayPng(map));
    else
        writePicture(path, greyPicture(map));
}

/// One run of the command: the network and the mask that all inputs share.
class DepthRun {
public:
    DepthRun(const DepthOptions& options, DepthValues values)
        : m_options(options), m_values(std::move(values)), m_messages(options.quiet) {}

    int run(const ApplyPlan& plan) {
        bool failed = !attempt([&] { prepare(plan); });
        m_messages.startProgress(plan.items.size());
        for (std::size_t i = 0; i < plan.items.size() && m_ready; ++i) {
            const ApplyItem& item = plan.items[i];
            m_voice->enter(item.input.shown);
            const bool done = attempt([&] { process(i, item); });
            m_voice->leave(item.input.shown);
            failed = failed || !done;
            m_messages.finished(i, item.input.shown + " -> " + item.output.shown, !done);
        }
        m_messages.endProgress();
        return failed ? kWorkFailed : kDone;
    }

private:
    /// Does one piece of the work; a failure is told with the file that m_file names by then.
    template <typename Work>
    bool attempt(const Work& work) {
        try {
            work();
            return true;
        } catch (const FileFailure& failure) {
            m_messages.error(failure.file(), failure.what());
        } catch (const std::bad_alloc&) {
            m_messages.error(m_file, "there is not enough memory for it");
        } catch (const std::exception& problem) {
            m_messages.error(m_file, problem.what());
        }
        return false;
    }

    void prepare(const ApplyPlan& plan) {
        m_voice.emplace(m_messages, m_options.verbose, m_options.assets);
        m_file = m_options.mask;
        if (!m_options.mask.empty()) m_mask = readMask(UserPath(m_options.mask).real);
        for (const UserPath& folder : plan.folders) {
            m_file = folder.shown;
            fs::create_directories(folder.real);
        }
        const zel_status status = zel_check_depth(library(), network());
        if (status == ZEL_BAD_ASSET)
            throw FileFailure("", std::string(zel_message()) + "; --set model=FILE names another one");
        require(status);
        m_ready = true;
    }

    void process(std::size_t index, const ApplyItem& item) {
        m_file = item.input.shown;
        m_messages.progress(index, "reading", 0);
        LoadedPicture picture = readPicture(item.input);
        for (const auto& note : picture.notes) m_messages.note(item.input.shown, note);
        noteMask(picture.image);
        m_messages.progress(index, "estimating depth", 0.1);
        Mask person;
        const Mask map = mapOf(item, picture.image, person);
        m_messages.progress(index, "writing", 0.9);
        m_file = item.output.shown;
        writeMap(item.output.real, map);
        if (!item.maskOut.shown.empty()) {
            m_file = item.maskOut.shown;
            writeMap(item.maskOut.real, person);
        }
        if (item.sheet.shown.empty()) return;
        m_file = item.sheet.shown;
        const Image grey = greyPicture(map), colours = colourDepth(map);
        writePicture(item.sheet.real, makeSheet({{picture.image, "picture"},
                                                 {grey, m_options.raw ? "depth, unrefined" : "depth"},
                                                 {colours, "near is warm"}}));
    }

    /// The file that was told; null for the library's own.
    const char* network() const { return m_values.model.empty() ? nullptr : m_values.model.c_str(); }

    /// Those of the subject are kept whole; without any finder of faces there is none.
    libzel::Faces facesIn(Image& image) {
        if (m_mask || m_options.raw || m_values.subject == ZEL_SUBJECT_NONE) return nullptr;
        zel_faces* faces = nullptr;
        const zel_pixels picture = pixelsOf(image);
        const zel_status status = zel_find_faces(library(), &picture, &faces);
        if (status == ZEL_NOT_AVAILABLE)
            m_messages.note(m_file, std::string(zel_message()) + "; going on without faces");
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
        const libzel::Faces faces = facesIn(image);
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
    Messages m_messages;
    std::optional<LibraryVoice> m_voice;
    std::optional<Mask> m_mask;
    std::string m_file;  // what is being worked on
    bool m_ready = false;
};

}  // namespace

int runDepth(const DepthOptions& options) {
    DepthValues values = valuesOf(options.assignments);
    if (options.raw && !options.mask.empty())
        throw UsageError("--raw takes no --mask: the mask is a part of the refinement");
    if (options.raw && !options.personMask.empty())
        throw UsageError("--raw makes no --person-mask: the mask is a part of the refinement");
    const ApplyPlan plan = planDepth(options);
    return DepthRun(options, std::move(values)).run(plan);
}

}  // namespace zelcli
