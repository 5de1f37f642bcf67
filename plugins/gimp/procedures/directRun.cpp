#include "gimp/procedures/directRun.h"

#include "gimp/picture/pictureFaces.h"

namespace zelgimp {

namespace {

/// An effect that can do without faces goes on without a finder.
libzel::Faces foundFaces(const zel_effect& effect, gint32 image) {
    gimp_progress_set_text("Finding faces");
    const Rgba visible = visiblePixels(image);
    try {
        libzel::Faces faces = libzel::findFaces(library(), pixelsOf(visible));
        keepFaces(image, faces.get());
        return faces;
    } catch (const libzel::Error& error) {
        if (error.status() != ZEL_NOT_AVAILABLE || effect.faces == ZEL_REQUIRED) throw;
        gimp_message((sentenceOf(error.what()) + " The effect goes on without faces.").c_str());
        return nullptr;
    }
}

libzel::Faces facesFor(const Request& request, const std::string& facesFile, gint32 image) {
    if (!facesFile.empty()) return facesFromFile(facesFile);
    if (!meaningOf(request).usesFaces) return nullptr;
    libzel::Faces kept = keptFaces(image);
    return kept ? std::move(kept) : foundFaces(*request.effect, image);
}

}  // namespace

void runDirectly(const Request& request, const std::string& facesFile, const TargetLayer& layer) {
    gimp_progress_init(request.effect->title);
    const Meaning meaning = meaningOf(request);
    const libzel::Faces faces = facesFor(request, facesFile, layer.image());
    EffectCall call = callOf(request, layer, std::make_shared<Rgba>(layer.read()));
    call.faces = facesForEffect(faces.get(), layer);
    if (meaning.usesFaces) requireFaces(*request.effect, call.faces.get());
    const Rgba after = call.run([](double fraction, const char* stage) {
        gimp_progress_set_text(stage);
        gimp_progress_update(fraction);
        return false;
    });
    layer.write(*call.picture, after, request.blend());
}

}  // namespace zelgimp
