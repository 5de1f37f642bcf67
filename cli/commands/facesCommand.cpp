#include "cli/commands/facesCommand.h"

#include <atomic>
#include <map>

#include "cli/commands/applyCommand.h"
#include "cli/drawing/faceOverlay.h"
#include "cli/files/facesFile.h"
#include "cli/files/readPicture.h"
#include "cli/files/writePicture.h"
#include "cli/library.h"
#include "cli/run/jobs.h"
#include "cli/run/messages.h"
#include "platform/utf8Path.h"

namespace zelcli {

namespace {

namespace fs = std::filesystem;
using zellab::platform::utf8Path;

/// Overlays of smaller pictures are enlarged to about this many pixels, so that the numbers can be read.
constexpr int kOverlaySide = 2400;

/// One input and what is written for it.
struct FacesItem {
    UserPath input, data;
    UserPath overlay;  // shown empty: none
};

bool isFolder(const std::string& path, std::size_t inputs, const char* option) {
    std::error_code error;
    if (fs::is_directory(utf8Path(path), error) || (!path.empty() && path.back() == '/')) return true;
    if (inputs > 1 && (fs::exists(utf8Path(path), error) || utf8Path(path).has_extension()))
        throw UsageError(std::string(option) + " must be a folder for several inputs, not '" + path + "'");
    return inputs > 1;
}

struct FacesPlan {
    std::vector<FacesItem> items;
    std::vector<UserPath> folders;  // to be made where they are missing
};

FacesPlan planFaces(const FacesOptions& options) {
    const std::size_t count = options.inputs.size();
    const bool draws = !options.overlay.empty();
    const bool dataFolder = isFolder(options.output, count, "FACES.json");
    const bool overlayFolder = draws && isFolder(options.overlay, count, "--overlay");
    if (draws && !overlayFolder) requireFormat(options.overlay, "--overlay");
    FacesPlan plan;
    if (dataFolder) plan.folders.emplace_back(options.output);
    if (overlayFolder) plan.folders.emplace_back(options.overlay);
    std::map<std::string, std::string> owners;
    for (const std::string& name : options.inputs) {
        const std::string stem = utf8Path(name).stem().string();
        FacesItem item;
        item.input = UserPath(name);
        item.data = dataFolder ? UserPath(options.output) / (stem + ".json") : UserPath(options.output);
        if (draws)
            item.overlay =
                overlayFolder ? UserPath(options.overlay) / (stem + "-faces.png") : UserPath(options.overlay);
        const auto [owner, fresh] = owners.emplace(item.data.shown, name);
        if (!fresh)
            throw UsageError("'" + item.data.shown + "' would be written twice (for '" + owner->second +
                             "' and '" + name + "')");
        plan.items.push_back(item);
    }
    return plan;
}

class FacesRun {
public:
    explicit FacesRun(const FacesOptions& options) : m_options(options), m_messages(options.quiet) {}

    int run(const FacesPlan& plan) {
        for (const UserPath& folder : plan.folders) {
            std::error_code error;
            fs::create_directories(folder.real, error);
            if (!error) continue;
            m_messages.error(folder.shown, "cannot be made (" + error.message() + ")");
            return kWorkFailed;
        }
        m_messages.startProgress(plan.items.size());
        runJobs(plan.items.size(), m_options.jobs, [&](std::size_t i) { process(i, plan.items[i]); });
        m_messages.endProgress();
        return m_failed ? kWorkFailed : kDone;
    }

private:
    void process(std::size_t index, const FacesItem& item) {
        std::string line, file = item.input.shown;
        bool failed = true;
        try {
            line = search(index, item, file);
            failed = false;
        } catch (const std::bad_alloc&) {
            m_messages.error(file, "there is not enough memory for it");
        } catch (const std::exception& problem) {
            m_messages.error(file, problem.what());
        }
        if (failed) m_failed = true;
        m_messages.finished(index, item.input.shown + " -> " + item.data.shown + " (" + line + ")", failed);
    }

    /// Does one input; `file` is kept at what a failure is about. Returns what was found, in words.
    std::string search(std::size_t index, const FacesItem& item, std::string& file) {
        m_messages.progress(index, "reading", 0);
        LoadedPicture picture = readPicture(item.input);
        for (const auto& note : picture.notes) m_messages.note(item.input.shown, note);
        m_messages.progress(index, "finding faces", 0.1);
        zel_faces* faces = nullptr;
        const zel_pixels pixels = pixelsOf(picture.image);
        require(zel_find_faces(library(), &pixels, &faces));
        const libzel::Faces found(faces);
        if (zel_faces_count(faces) == 0)
            m_messages.note(item.input.shown, "no face was found; the list of faces is empty");
        m_messages.progress(index, "writing", 0.8);
        file = item.data.shown;
        writeFaces(item.data, faces);
        if (!item.overlay.shown.empty()) {
            file = item.overlay.shown;
            Image drawn = enlargedForOverlay(picture.image, kOverlaySide);
            drawFaceOverlay(drawn, faces);
            writePicture(item.overlay.real, drawn);
        }
        return describeFaces(faces);
    }

    const FacesOptions& m_options;
    Messages m_messages;
    std::atomic<bool> m_failed{false};
};

}  // namespace

int runFaces(const FacesOptions& options) {
    const FacesPlan plan = planFaces(options);
    return FacesRun(options).run(plan);
}

}  // namespace zelcli
