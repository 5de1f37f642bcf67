#include "libzel/effects/defocusScene.h"

#include <utility>

#include "inference/moduleLoader.h"
#include "libzel/lentDepth.h"

namespace zel {

namespace {

using DepthView = zellab::PlaneView<const unsigned char>;

/// Shares of the work that are done by then.
constexpr double kLoadingAt = 0, kPersonsAt = 0.2;

SubjectWish wishOf(const ParameterValues& values) {
    const std::string& word = values.text("subject");
    return word == "none"     ? SubjectWish::none
           : word == "person" ? SubjectWish::person
                              : SubjectWish::automatic;
}

zellab::ConstImageView viewOf(const Image& image) {
    return {image.rgba.data(), image.width, image.height};
}

/// Looks for the subject, unless its mask was given.
void chooseSubject(EffectRun& run, DepthView depth, DefocusScene& scene) {
    scene.faces = run.faces;
    scene.mask = scene.rim = run.mask;
    if (run.mask) return;
    run.progress("finding persons", kPersonsAt);
    std::optional<zellab::Vector2f> focus;
    if (const auto point = run.values.point("focus")) focus = zellab::Vector2f{point->first, point->second};
    auto subject =
        subjectFor(viewOf(run.image), depth, {wishOf(run.values), run.faces, focus, run.surroundings.assets});
    if (!subject) return;
    scene.faces = facesOf(*subject, run.faces);
    scene.found = std::make_unique<Subject>(std::move(*subject));
    scene.mask = &scene.found->mask;
    scene.rim = &scene.found->rim;
}

void estimateDepth(EffectRun& run, DefocusScene& scene) {
    run.progress("estimating depth", kLoadingAt);
    const std::string absence = zellab::platform::networkModuleAbsence();
    if (!absence.empty()) throw Failure(absence + "; or give a depth map", ZEL_NOT_AVAILABLE);
    const LentDepth network(*run.surroundings.depthNetworks, run.surroundings.assets, nullptr);
    // A mask that was given may be one of hair alone, unless it is told to be the person's.
    const auto isPerson = [&] {
        return scene.mask && (scene.found || wishOf(run.values) == SubjectWish::person);
    };
    zellab::PortraitDepthPlanes planes = network->estimate(viewOf(run.image), [&](DepthView raw) {
        chooseSubject(run, raw, scene);
        return isPerson() ? viewOf(*scene.mask) : DepthView();
    });
    if (!planes.estimated) throw Failure("its depth cannot be estimated");
    if (isPerson()) levelSubject(planes, *scene.mask, scene.faces, scene.lights());
    scene.depth = std::move(planes.refined);
}

}  // namespace

DefocusScene defocusScene(EffectRun& run) {
    DefocusScene scene;
    if (run.depth) {
        scene.depth = zellab::copyOf(viewOf(*run.depth));
        chooseSubject(run, std::as_const(scene.depth).view(), scene);
    } else {
        estimateDepth(run, scene);
    }
    return scene;
}

}  // namespace zel
