#include <string>

#include "depth/portraitDepth.h"
#include "inference/moduleLoader.h"
#include "libzel/call.h"
#include "libzel/faces/faceList.h"
#include "libzel/networks/knownNetworks.h"
#include "libzel/networks/networkFile.h"
#include "libzel/pixels.h"
#include "libzel/progress.h"
#include "platform/fileProbe.h"
#include "zellab/utils/assetFolders.h"

namespace {

using namespace zel;

/// A loaded network, the one that was told or the own one, on loan from the context.
class LentNetwork {
public:
    LentNetwork(zel_context& context, const char* told)
        : m_pool(context.depthNetworks),
          m_file(told ? std::string(told) : zellab::assetPath(context.settings.assets, depthNetwork().file)),
          m_network(m_pool.take(m_file)) {
        if (m_network) return;
        const auto refusal = [&](const std::string& why) {
            return told ? Failure(m_file + ": " + why, ZEL_BAD_FILE) : assetFailure(depthNetwork().file, why);
        };
        if (!zellab::platform::pathExists(m_file.c_str()))
            throw refusal(told ? "there is no such file" : "the depth network is missing");
        if (const std::string problem = told ? "" : networkProblem(m_file, depthNetwork().sum);
            !problem.empty())
            throw refusal(problem);
        if (const std::string absence = zellab::platform::networkModuleAbsence(); !absence.empty())
            throw Failure(absence, ZEL_NOT_AVAILABLE);
        m_network = std::make_unique<zellab::PortraitDepth>();
        if (!m_network->load(m_file.c_str()))
            throw refusal(
                "is no depth network: an ONNX file with one float input of 1 x 3 x H x W and one or two maps "
                "out");
    }
    ~LentNetwork() {
        try {
            m_pool.giveBack(m_file, std::move(m_network));
        } catch (const std::bad_alloc&) {  // the next call loads one
        }
    }
    LentNetwork(const LentNetwork&) = delete;
    LentNetwork& operator=(const LentNetwork&) = delete;

    zellab::PortraitDepth* operator->() const { return m_network.get(); }

private:
    DepthPool& m_pool;
    const std::string m_file;
    DepthPool::Network m_network;
};

}  // namespace

zel_status zel_check_depth(zel_context* context, const char* network) {
    return guardedIn(context, [&] { const LentNetwork loaded(*context, network); });
}

zel_status zel_estimate_depth(zel_context* context, const zel_pixels* pixels,
                              const zel_depth_options* options, const zel_pixels* out) {
    return guardedIn(context, [&] {
        checkColour(pixels, "the picture");
        checkPlane(out, pixels->width, pixels->height, "the depth to fill");
        const zel_depth_options told = received(options, "options");
        Mask person;
        if (told.person) {
            if (told.raw) throw badArgument("raw takes no person mask: the mask is a part of the refinement");
            checkGrey(told.person, "the person mask");
            person = maskOf(*told.person);
        }
        const Progress progress(told.progress, told.progress_user);
        progress.tell("loading the network", 0);
        const LentNetwork depth(*context, told.network);
        progress.tell("estimating depth", 0.1);
        const Image image = imageOf(*pixels);
        const zellab::PortraitDepthPlanes planes =
            depth->estimate({image.rgba.data(), image.width, image.height},
                            {told.person ? person.samples.data() : nullptr, person.width, person.height});
        if (!planes.estimated) throw Failure("the depth network could not run on it");
        Mask map{image.width, image.height, {}};
        map.samples = zellab::scaleDepthPlane((told.raw ? planes.raw : planes.refined).view(), image.width,
                                              image.height);
        if (map.samples.empty()) throw Failure("is too large");
        progress.tell("done", 1);
        writeBack(map, *out);
    });
}

zel_status zel_make_mask(zel_context* context, zel_mask_kind kind, const zel_pixels* pixels,
                         const zel_faces* faces, const zel_pixels* out) {
    return guardedIn(context, [&] {
        if (!isOneOf(kind, ZEL_MASK_SKIN, ZEL_MASK_PERSON)) throw badArgument("kind is no zel_mask_kind");
        checkColour(pixels, "the picture");
        checkPlane(out, pixels->width, pixels->height, "the mask to fill");
        if (faces) given(faces, "faces");
        throw Failure("masks need networks that this version does not have", ZEL_NOT_AVAILABLE);
    });
}
