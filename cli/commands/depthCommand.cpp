#include "cli/commands/depthCommand.h"

#include <cmath>
#include <optional>

#include "cli/commands/applyCommand.h"
#include "cli/commands/applyPlan.h"
#include "cli/drawing/depthColours.h"
#include "cli/drawing/sheet.h"
#include "cli/files/pngWriter.h"
#include "cli/files/writePicture.h"
#include "cli/library.h"
#include "cli/run/messages.h"

namespace zelcli {

namespace {

namespace fs = std::filesystem;

/// A mask of other proportions does not fit; a rounded reduction does.
constexpr double kProportionTolerance = 0.02;

/// The file that `--set model=FILE` names; empty where it is not given.
std::string modelOf(const std::vector<std::string>& assignments) {
    const std::string name = "model=";
    std::string model;
    for (const std::string& word : assignments) {
        if (word.rfind(name, 0) != 0 || word.size() == name.size())
            throw UsageError("zel depth has one parameter, model=FILE; not '" + word + "'");
        model = word.substr(name.size());
    }
    return model;
}

/// Outputs go where `zel apply` would put them.
ApplyPlan planDepth(const DepthOptions& options) {
    ApplyOptions apply;
    apply.inputs = options.inputs;
    apply.output = options.output;
    apply.compare = options.compare;
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
    DepthRun(const DepthOptions& options, std::string model)
        : m_options(options), m_model(std::move(model)), m_messages(options.quiet) {}

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
        const Mask map = mapOf(picture.image);
        m_messages.progress(index, "writing", 0.9);
        m_file = item.output.shown;
        writeMap(item.output.real, map);
        if (item.sheet.shown.empty()) return;
        m_file = item.sheet.shown;
        const Image grey = greyPicture(map), colours = colourDepth(map);
        writePicture(item.sheet.real, makeSheet({{picture.image, "picture"},
                                                 {grey, m_options.raw ? "depth, unrefined" : "depth"},
                                                 {colours, "near is warm"}}));
    }

    /// The file that was told; null for the library's own.
    const char* network() const { return m_model.empty() ? nullptr : m_model.c_str(); }

    Mask mapOf(Image& image) {
        auto options = libzel::sized<zel_depth_options>();
        zel_pixels person;
        if (m_mask) {
            person = pixelsOf(*m_mask);
            options.person = &person;
        }
        options.network = network();
        options.raw = m_options.raw;
        Mask map{image.width, image.height, std::vector<unsigned char>(image.rgba.size() / 4)};
        const zel_pixels picture = pixelsOf(image), plane = pixelsOf(map);
        require(zel_estimate_depth(library(), &picture, &options, &plane));
        return map;
    }

    void noteMask(const Image& image) {
        if (!m_mask) return;
        const double proportion = static_cast<double>(image.width) / image.height;
        if (std::abs(proportion * m_mask->height / m_mask->width - 1.0) > kProportionTolerance)
            m_messages.note(m_options.mask, "it has other proportions than " + m_file + " and is stretched");
    }

    const DepthOptions& m_options;
    const std::string m_model;
    Messages m_messages;
    std::optional<LibraryVoice> m_voice;
    std::optional<Mask> m_mask;
    std::string m_file;  // what is being worked on
    bool m_ready = false;
};

}  // namespace

int runDepth(const DepthOptions& options) {
    std::string model = modelOf(options.assignments);
    if (options.raw && !options.mask.empty())
        throw UsageError("--raw takes no --mask: the mask is a part of the refinement");
    const ApplyPlan plan = planDepth(options);
    return DepthRun(options, std::move(model)).run(plan);
}

}  // namespace zelcli
