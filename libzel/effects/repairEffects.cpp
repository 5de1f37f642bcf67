#include <algorithm>
#include <cmath>

#include "libzel/effects/effectLists.h"
#include "libzel/effects/effectParts.h"
#include "libzel/effects/guessedEyes.h"
#include "libzel/effects/keptMoles.h"
#include "libzel/effects/randomTurn.h"
#include "zel_effects/zel_effects.h"

namespace zel {

namespace {

using ZelImageCore::TableSkin;

/// The library's masks are changed or kept as an effect likes: it gets a copy.
std::vector<unsigned char> maskCopy(const EffectRun& run) {
    return maskOfPictureSize(run).samples;
}

void runInpaint(EffectRun& run) {
    Image& image = run.image;
    std::vector<unsigned char> mask = maskCopy(run);
    const RandomTurn tries(static_cast<unsigned>(run.values.integer("seed")));
    TableSkin::ImageProcessWithInpaint(image.rgba.data(), image.width, image.height, mask.data(),
                                       run.values.text("method") == "gradient" ? 1 : 0);
}

void runWrinkleCleaner(EffectRun& run) {
    Image& image = run.image;
    std::vector<unsigned char> mask = maskCopy(run);
    TableSkin::ImageProcessWithWrinkleCleaner(image.rgba.data(), image.width, image.height, mask.data(),
                                              run.values.integer("strength"),
                                              run.values.text("method") == "region" ? 2 : 0);
}

void runRemoveBlackCircle(EffectRun& run) {
    Image& image = run.image;
    const auto value = [&run](const char* name) { return run.values.number(name); };
    if (run.mask) {
        std::vector<unsigned char> mask = maskCopy(run);
        TableSkin::ImageProcessWithRemoveBlackCircle(image.rgba.data(), image.width, image.height,
                                                     mask.data(), nullptr, 1);
        return;
    }
    float rect[] = {value("left"), value("top"), value("width"), value("height")};
    if (rect[2] < 1 || rect[3] < 1)
        throw Failure("needs a mask, or left, top, width and height of a rectangle", ZEL_MISSING_INPUT);
    TableSkin::ImageProcessWithRemoveBlackCircle(image.rgba.data(), image.width, image.height, nullptr, rect,
                                                 0);
}

void runAutoRemoveBlackCircle(EffectRun& run) {
    Image& image = run.image;
    forFaces(run, [&](zellab::CInterFacePoint* points, int face) {
        const EyeReasons stay = hiddenEyes(faceAt(run, face));
        tellEyesThatStay(face, stay);
        const bool left = stay[0].empty(), right = stay[1].empty();
        if (!left && !right) return true;
        const Image before = left && right ? Image{} : image;
        CGRect rect = faceRectInPixels(faceAt(run, face), image.width, image.height);
        TableSkin::ImageProcessWithAutoRemoveBlackCircle(image.rgba.data(), image.width, image.height, rect,
                                                         points, face, run.values.number("strength"),
                                                         run.values.integer("method"));
        if (!left || !right) putBackEyes(image, before, faceAt(run, face), stay);
        return true;
    });
}

/// What the library looked at on any of the faces.
void addToMaskOut(Mask& all, const Image& image, const std::vector<unsigned char>& mask) {
    all.width = image.width;
    all.height = image.height;
    all.samples.resize(mask.size());
    std::transform(mask.begin(), mask.end(), all.samples.begin(), all.samples.begin(),
                   [](unsigned char a, unsigned char b) { return std::max(a, b); });
}

float pupilDistanceOf(const zellab::CInterFacePoint& points, int face) {
    constexpr std::size_t kLeftPupil = 169, kRightPupil = 170;
    const zellab::Vector2f* dense = points.GetInterPoints(face);
    if (!dense) return 0;
    return std::hypot(dense[kRightPupil].x - dense[kLeftPupil].x, dense[kRightPupil].y - dense[kLeftPupil].y);
}

void runAutoFaceInpaint(EffectRun& run) {
    constexpr unsigned char kSearched = 255;
    Image& image = run.image;
    const bool keepMoles = run.values.text("moles") == "keep";
    std::vector<unsigned char> searched;
    if (run.mask)
        searched = maskCopy(run);
    else if (run.maskOut)
        searched.assign(image.rgba.size() / 4, kSearched);
    forFaces(run, [&](zellab::CInterFacePoint* points, int face) {
        CGRect rect = faceRectInPixels(faceAt(run, face), image.width, image.height);
        std::vector<unsigned char> mask = searched;  // each face gets its own skin back in it
        const Image before = keepMoles ? image : Image{};
        TableSkin::ImageProcessWithAutoFaceInpaint(image.rgba.data(), mask.empty() ? nullptr : mask.data(),
                                                   image.width, image.height, rect, points, face,
                                                   run.values.text("method") == "fine" ? 1 : 0);
        if (keepMoles) putBackMoles(image, before, pupilDistanceOf(*points, face));
        if (run.maskOut) addToMaskOut(*run.maskOut, image, mask);
        return true;
    });
}

Effect autoFaceInpaint() {
    Effect effect;
    effect.name = "auto-face-inpaint";
    effect.title = "Remove spots";
    effect.operation = "ZelImageCore::TableSkin::ImageProcessWithAutoFaceInpaint";
    effect.summary = "Finds moles, spots and blemishes on faces and repairs them";
    effect.advice =
        "Before any smoothing, so that a spot is gone and not smeared. Use moles=keep for marks that belong "
        "to the person, and a mask for what must be repaired in any case.";
    effect.parameters = {
        choiceParameter(
            "method", {"flecks", "fine"}, "fine",
            "fine works at 640 pixels and follows the distance of the eyes; flecks finds more on a copy "
            "of 280 pixels, and takes stubble and glasses' rims for spots"),
        choiceParameter(
            "moles", {"remove", "keep"}, "remove",
            "keep puts back spots that are round, large and dark in red too, as pimples and freckles "
            "are not"),
        faceIndexParameter()};
    effect.faces = ZEL_REQUIRED;
    effect.mask = ZEL_OPTIONAL;
    effect.maskOut = ZEL_OPTIONAL;
    effect.example =
        "zel apply auto-face-inpaint portrait.png -o clean.png --faces faces.json --set method=fine";
    effect.run = runAutoFaceInpaint;
    return effect;
}

Effect inpaint() {
    Effect effect;
    effect.name = "inpaint";
    effect.title = "Fill a mask";
    effect.operation = "ZelImageCore::TableSkin::ImageProcessWithInpaint";
    effect.summary = "Fills what a mask marks from the rest of the picture";
    effect.advice =
        "For scratches, dust, wires and what should not be there: paint a little beyond its edge. Gradient "
        "for skin and sky, patches for grass, cloth and hair.";
    effect.parameters = {
        choiceParameter("method", {"gradient", "patches"}, "gradient",
                        "gradient suits faces and slopes, patches suit texture"),
        integerParameter("seed", 0, 2147483647, "1", "start of the random tries of patches")};
    effect.mask = ZEL_REQUIRED;
    effect.example = "zel apply inpaint portrait.png -o clean.png --mask scratch.png --set method=gradient";
    effect.run = runInpaint;
    return effect;
}

Effect wrinkleCleaner() {
    Effect effect;
    effect.name = "wrinkle-cleaner";
    effect.title = "Smooth wrinkles";
    effect.operation = "ZelImageCore::TableSkin::ImageProcessWithWrinkleCleaner";
    effect.summary = "Smooths the wrinkles that a mask marks and keeps the skin's texture";
    effect.advice =
        "For a few deep lines, painted along. Strength 0 leaves them, 50 softens as most people like it, 100 "
        "takes them away.";
    effect.parameters = {
        integerParameter("strength", 0, 100, "100", "percentage; acts on method mask alone"),
        choiceParameter("method", {"mask", "region"}, "mask",
                        "mask works block by block under white marks, region on one box around all marks")};
    effect.mask = ZEL_REQUIRED;
    effect.example =
        "zel apply wrinkle-cleaner portrait.png -o smooth.png --mask wrinkles.png --set strength=80";
    effect.run = runWrinkleCleaner;
    return effect;
}

Effect removeBlackCircle() {
    constexpr double kLargestSide = 32767;
    Effect effect;
    effect.name = "remove-black-circle";
    effect.title = "Lighten dark circles under a mask";
    effect.operation = "ZelImageCore::TableSkin::ImageProcessWithRemoveBlackCircle";
    effect.summary = "Lightens dark circles under a mask or in a rectangle";
    effect.advice =
        "Where no face is found, or for a shadow elsewhere: paint the mask over the shadow and a little "
        "beyond, or give a rectangle.";
    effect.parameters = {
        in("pixels", numberParameter("left", 0, kLargestSide, "0", "left edge of the rectangle in pixels")),
        in("pixels", numberParameter("top", 0, kLargestSide, "0", "top edge of the rectangle in pixels")),
        in("pixels", numberParameter("width", 0, kLargestSide, "0", "width of the rectangle in pixels")),
        in("pixels", numberParameter("height", 0, kLargestSide, "0", "height of the rectangle in pixels"))};
    effect.mask = ZEL_OPTIONAL;
    effect.example = "zel apply remove-black-circle portrait.png -o rested.png --mask circles.png";
    effect.run = runRemoveBlackCircle;
    return effect;
}

Effect autoRemoveBlackCircle() {
    Effect effect;
    effect.name = "auto-remove-black-circle";
    effect.title = "Lighten dark circles";
    effect.operation = "ZelImageCore::TableSkin::ImageProcessWithAutoRemoveBlackCircle";
    effect.summary = "Lightens the shadows under the eyes of faces";
    effect.advice =
        "For a short night or light from above. Strength 0 leaves the shadows, 0.55 halves them, at 1 the "
        "skin below the eyes may look flat.";
    effect.parameters = {numberParameter("strength", 0, 1, "0.55", "strength of the repair"),
                         integerParameter("method", 0, 1, "0", "0 spares the rim of the lid, 1 does not"),
                         faceIndexParameter()};
    effect.faces = ZEL_REQUIRED;
    effect.example = "zel apply auto-remove-black-circle portrait.png -o rested.png --set strength=0.8";
    effect.run = runAutoRemoveBlackCircle;
    return effect;
}

}  // namespace

std::vector<Effect> repairEffects() {
    return {autoFaceInpaint(), autoRemoveBlackCircle(), removeBlackCircle(), inpaint(), wrinkleCleaner()};
}

}  // namespace zel
