#include "libzel/effects/effectLists.h"
#include "libzel/effects/effectParts.h"
#include "zel_effects/zel_effects.h"

namespace zel {

namespace {

/// A fraction of the picture that has to be given.
Parameter place(const char* name, const char* help) {
    return numberParameter(name, 0, 1, "", help);
}

void runAutoSlimFace(EffectRun& run) {
    Image& image = run.image;
    const auto value = [&run](const char* name) { return run.values.number(name); };
    forFaces(run, [&](zellab::CInterFacePoint* points, int face) {
        return CFaceSlimRender::autoSlimFace(image.rgba.data(), image.width, image.height, points,
                                             value("strength"), value("outerWeight"), value("middleWeight"),
                                             value("innerWeight"), value("upperFactor"), value("lowerFactor"),
                                             value("jawFactor"), value("chinFactor"), face);
    });
}

void runAutoZoomEye(EffectRun& run) {
    Image& image = run.image;
    const auto value = [&run](const char* name) { return run.values.number(name); };
    forFaces(run, [&](zellab::CInterFacePoint* points, int face) {
        return CEyeZoomRender::autoZoomEye(image.rgba.data(), image.width, image.height, points,
                                           value("strength"), value("eyeRatioLimit"), value("zoomFactor"),
                                           value("ringScale"), face);
    });
}

void refuseBrush() {
    throw Failure("the brush is smaller than 2 pixels; a larger radius is needed");
}

void runSlimFace(EffectRun& run) {
    Image& image = run.image;
    const auto value = [&run](const char* name) { return run.values.number(name); };
    if (!CFaceSlimRender::slimFace(image.rgba.data(), image.width, image.height, value("startX"),
                                   value("startY"), value("endX"), value("endY"), value("radius"),
                                   value("strength")))
        refuseBrush();
}

void runZoomEye(EffectRun& run) {
    Image& image = run.image;
    const zellab::Vector2f center{run.values.number("centerX"), run.values.number("centerY")};
    if (!CEyeZoomRender::zoomEye(image.rgba.data(), image.width, image.height, center,
                                 run.values.number("radius"), run.values.integer("strength")))
        refuseBrush();
}

Effect slimFace() {
    Effect effect;
    effect.name = "slim-face";
    effect.title = "Slimming brush";
    effect.operation = "CFaceSlimRender::slimFace";
    effect.summary = "Pushes the picture from a start to an end with a round brush";
    effect.advice =
        "For a strand of hair, a sleeve or a cheek that should sit elsewhere: several short drags look "
        "better than a long one. Strength near 0 barely moves, 100 moves by the whole drag.";
    effect.parameters = {
        place("startX", "start of the drag, as a fraction of the width"),
        place("startY", "start of the drag, as a fraction of the height"),
        place("endX", "end of the drag, as a fraction of the width"),
        place("endY", "end of the drag, as a fraction of the height"),
        numberParameter("radius", 0, 1, "0.1", "brush radius, as a fraction of the width"),
        numberParameter("strength", -100, 100, "60", "percentage; negative pinches at the end of the drag")};
    effect.example =
        "zel apply slim-face portrait.png -o slim.png --set startX=0.25 --set startY=0.6 --set endX=0.3 "
        "--set endY=0.58 --set radius=0.15";
    effect.run = runSlimFace;
    return effect;
}

Effect autoSlimFace() {
    Effect effect;
    effect.name = "auto-slim-face";
    effect.title = "Slim faces";
    effect.operation = "CFaceSlimRender::autoSlimFace";
    effect.summary = "Narrows faces along their contours";
    effect.advice =
        "For wide-angle faces and weary cheeks, lightly. Strength 0 leaves the face, up to 0.6 few will "
        "notice, near 2 the jaw is another person's.";
    effect.parameters = {
        numberParameter("strength", 0, 2, "0.5", "overall strength; the chin does not follow it"),
        numberParameter("outerWeight", 0, 1, "1.0", "weight of the ring outside the contour"),
        numberParameter("middleWeight", 0, 1, "0.9", "weight of the ring next to the contour"),
        numberParameter("innerWeight", 0, 1, "0.6", "weight of the contour itself"),
        numberParameter("upperFactor", -1, 1, "0.2", "pull of the cheeks"),
        numberParameter("lowerFactor", -1, 1, "0.4", "pull of the lower cheeks"),
        numberParameter("jawFactor", -1, 1, "0.34", "pull of the jaw"),
        numberParameter("chinFactor", -2, 2, "-0.5", "pull of the chin; negative lengthens it"),
        faceIndexParameter()};
    effect.faces = ZEL_REQUIRED;
    effect.example =
        "zel apply auto-slim-face portrait.png -o slim.png --faces faces.json --set strength=0.8";
    effect.run = runAutoSlimFace;
    return effect;
}

Effect zoomEye() {
    Effect effect;
    effect.name = "zoom-eye";
    effect.title = "Enlarging brush";
    effect.operation = "CEyeZoomRender::zoomEye";
    effect.summary = "Enlarges what lies around one point";
    effect.advice =
        "For one eye that is smaller than the other, or any round thing. Strength 0 leaves it, above 100 it "
        "bulges, below 0 it shrinks.";
    effect.parameters = {place("centerX", "centre, as a fraction of the width"),
                         place("centerY", "centre, as a fraction of the height"),
                         numberParameter("radius", 0, 1, "0.05", "radius, as a fraction of the width"),
                         integerParameter("strength", -200, 200, "60", "percentage; negative shrinks")};
    effect.example =
        "zel apply zoom-eye portrait.png -o eye.png --set centerX=0.4 --set centerY=0.45 --set radius=0.06";
    effect.run = runZoomEye;
    return effect;
}

Effect autoZoomEye() {
    Effect effect;
    effect.name = "auto-zoom-eye";
    effect.title = "Enlarge eyes";
    effect.operation = "CEyeZoomRender::autoZoomEye";
    effect.summary = "Enlarges the eyes of faces";
    effect.advice =
        "For eyes that glasses make small, or a look of wonder. Strength 0 leaves them, about 0.5 looks "
        "natural, near 2 it is a caricature.";
    effect.parameters = {
        numberParameter("strength", 0, 2, "0.5", "overall strength"),
        numberParameter("eyeRatioLimit", 0, 2, "0.9",
                        "both eyes' width to the face's at which nothing grows"),
        numberParameter("zoomFactor", 0, 2, "0.2", "scale of the zoom"),
        numberParameter("ringScale", 0, 2, "1.0", "width of the blend around an eye, against its own size"),
        faceIndexParameter()};
    effect.faces = ZEL_REQUIRED;
    effect.example = "zel apply auto-zoom-eye portrait.png -o eyes.png --faces faces.json --set strength=0.8";
    effect.run = runAutoZoomEye;
    return effect;
}

}  // namespace

std::vector<Effect> reshapeEffects() {
    return {slimFace(), autoSlimFace(), zoomEye(), autoZoomEye()};
}

}  // namespace zel
