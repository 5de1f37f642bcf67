#include <optional>
#include <string>
#include <utility>

#include "depth/portraitDepth.h"
#include "libzel/call.h"
#include "libzel/faces/faceList.h"
#include "libzel/lentDepth.h"
#include "libzel/networks/knownNetworks.h"
#include "libzel/networks/networkFile.h"
#include "libzel/networks/networkFolder.h"
#include "libzel/persons/subjectDepth.h"
#include "libzel/pixels.h"
#include "libzel/progress.h"
#include "platform/fileProbe.h"
#include "zellab/utils/assetFolders.h"

namespace {

using namespace zel;
using zellab::Byte;
using zellab::PlaneView;

SubjectWish wishOf(const zel_subject& subject) {  // by its address: a caller may have put any number there
    if (!isOneOf(subject, ZEL_SUBJECT_AUTO, ZEL_SUBJECT_NONE)) throw badArgument("subject is no zel_subject");
    return subject == ZEL_SUBJECT_AUTO     ? SubjectWish::automatic
           : subject == ZEL_SUBJECT_PERSON ? SubjectWish::person
                                           : SubjectWish::none;
}

/// The person mask of one call: the one that was given, or one by a network.
class PersonMask {
public:
    PersonMask(const zel_context& context, const Image& image, const zel_depth_options& told)
        : m_picture(image.rgba.data(), image.width, image.height), m_assets(context.settings.assets) {
        if (told.faces) m_faces = &given(told.faces, "faces").set;
        m_wish = told.raw || told.person ? SubjectWish::none : wishOf(told.subject);
        if (!told.person) return;
        if (told.raw) throw badArgument("raw takes no person mask: the mask is a part of the refinement");
        checkGrey(told.person, "the person mask");
        m_mask = maskOf(*told.person);
    }

    /// Empty where there is none.
    PlaneView<const Byte> forDepth(PlaneView<const Byte> raw) {
        m_subject = subjectFor(m_picture, raw, {m_wish, *m_faces, std::nullopt, m_assets});
        return m_subject ? viewOf(m_subject->mask) : viewOf(m_mask);
    }

    void level(zellab::PortraitDepthPlanes& planes) const {
        if (m_subject)
            levelSubject(planes, m_subject->mask, facesOf(*m_subject, *m_faces),
                         std::as_const(m_subject->lights).view());
    }

    const Mask& used() const { return m_subject ? m_subject->mask : m_mask; }

private:
    static inline const FaceSet kNoFaces{};

    zellab::ConstImageView m_picture;
    const std::string& m_assets;
    const FaceSet* m_faces = &kNoFaces;
    SubjectWish m_wish = SubjectWish::none;
    Mask m_mask;
    std::optional<Subject> m_subject;
};

/// In the size of the picture.
Mask scaledMask(const Mask& mask, int width, int height) {
    Mask scaled{width, height, zellab::scaleDepthPlane(viewOf(mask), width, height)};
    scaled.samples.resize(zellab::sampleCount(width, height));
    return scaled;
}

/// Why there is no mask of persons: a file that is there and wrong, or none.
zel_status maskAbsence(const zel_context& context) {
    constexpr const char* kFile = "personMask.onnx";
    const std::string path = zellab::assetPath(networkFolder(context.settings.assets), kFile);
    const bool isWrong =
        zellab::platform::pathExists(path.c_str()) && !networkProblem(path, sumOf(kFile)).empty();
    return isWrong ? ZEL_BAD_ASSET : ZEL_NOT_AVAILABLE;
}

}  // namespace

zel_status zel_check_depth(zel_context* context, const char* network) {
    return guardedIn(
        context, [&] { const LentDepth loaded(context->depthNetworks, context->settings.assets, network); });
}

zel_status zel_estimate_depth(zel_context* context, const zel_pixels* pixels,
                              const zel_depth_options* options, const zel_pixels* out) {
    return guardedIn(context, [&] {
        checkColour(pixels, "the picture");
        checkPlane(out, pixels->width, pixels->height, "the depth to fill");
        const zel_depth_options told = received(options, "options");
        if (told.person_out)
            checkPlane(told.person_out, pixels->width, pixels->height, "the person mask to fill");
        const Image image = imageOf(*pixels);
        PersonMask person(*context, image, told);
        const Progress progress(told.progress, told.progress_user);
        progress.tell("loading the network", 0);
        const LentDepth depth(context->depthNetworks, context->settings.assets, told.network);
        progress.tell("estimating depth", 0.1);
        zellab::PortraitDepthPlanes planes =
            depth->estimate({image.rgba.data(), image.width, image.height},
                            [&](PlaneView<const Byte> raw) { return person.forDepth(raw); });
        if (!planes.estimated) throw Failure("the depth network could not run on it");
        person.level(planes);
        Mask map{image.width, image.height, {}};
        map.samples = zellab::scaleDepthPlane((told.raw ? planes.raw : planes.refined).view(), image.width,
                                              image.height);
        if (map.samples.empty()) throw Failure("is too large");
        const Mask mask = told.person_out ? scaledMask(person.used(), image.width, image.height) : Mask();
        progress.tell("done", 1);
        writeBack(map, *out);
        if (told.person_out) writeBack(mask, *told.person_out);
    });
}

zel_status zel_make_mask(zel_context* context, zel_mask_kind kind, const zel_pixels* pixels,
                         const zel_faces* faces, const zel_pixels* out) {
    return guardedIn(context, [&] {
        if (!isOneOf(kind, ZEL_MASK_SKIN, ZEL_MASK_PERSON)) throw badArgument("kind is no zel_mask_kind");
        checkColour(pixels, "the picture");
        checkPlane(out, pixels->width, pixels->height, "the mask to fill");
        const FaceSet* const set = faces ? &given(faces, "faces").set : nullptr;
        if (kind == ZEL_MASK_SKIN)
            throw Failure("masks of skin need a network that this version does not have", ZEL_NOT_AVAILABLE);
        const Image image = imageOf(*pixels);
        std::string reason;
        const auto mask =
            personMask({image.rgba.data(), image.width, image.height}, set, context->settings.assets, reason);
        if (!mask) throw Failure("masks of persons need their network: " + reason, maskAbsence(*context));
        writeBack(scaledMask(*mask, image.width, image.height), *out);
    });
}
