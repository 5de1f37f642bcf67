#include <algorithm>

#include "libzel/effects/effectLists.h"
#include "libzel/effects/effectParts.h"
#include "zel_effects/zel_effects.h"

namespace zel {

namespace {

using ZelImageCore::TableBase;

/// The largest radius that a picture could use: the library limits it to a quarter of the shorter side.
constexpr double kLargestRadius = 8192;
/// The largest side of a picture, and so of a block or an offset.
constexpr double kLargestSide = 32767;

/// One pixel for every 640 of the longer side.
int automaticRadius(const Image& image) {
    return std::max(static_cast<int>(static_cast<float>(std::max(image.width, image.height)) / 640.0f + 0.5f),
                    1);
}

void runSharp(EffectRun& run) {
    Image& image = run.image;
    const int radius = run.values.integer("radius");
    std::vector<unsigned char> blurred = image.rgba;
    TableBase::ImageProcessWithGaussBlur(blurred.data(), image.width, image.height,
                                         radius > 0 ? radius : automaticRadius(image));
    unsigned char* copy = blurred.data();
    TableBase::ImageProcessWithSharp(image.rgba.data(), image.width, image.height,
                                     run.values.number("amount"), &copy);
}

void runGaussBlur(EffectRun& run) {
    Image& image = run.image;
    TableBase::ImageProcessWithGaussBlur(image.rgba.data(), image.width, image.height,
                                         run.values.integer("radius"));
}

void runMosaic(EffectRun& run) {
    Image& image = run.image;
    TableBase::ImageProcessWithMosaic(image.rgba.data(), image.width, image.height,
                                      run.values.integer("blockSize"));
}

void runColorMixing(EffectRun& run) {
    Image& image = run.image;
    float params[] = {run.values.number("brightness"), run.values.number("contrast"),
                      static_cast<float>(run.values.integer("saturation")),
                      static_cast<float>(run.values.integer("lift"))};
    TableBase::ImageProcessWithColorMixing(image.rgba.data(), image.width, image.height, params, 4);
}

/// The mask as the library wants it: four bytes a pixel, of which the first counts. Without a mask: all of
/// the picture.
std::vector<unsigned char> wideMask(const EffectRun& run) {
    const Image& image = run.image;
    if (!run.mask) return std::vector<unsigned char>(image.rgba.size(), 255);
    std::vector<unsigned char> wide(4 * run.mask->samples.size());
    for (std::size_t i = 0; i < run.mask->samples.size(); ++i) wide[4 * i] = run.mask->samples[i];
    return wide;
}

void runAlphaMix(EffectRun& run) {
    Image& image = run.image;
    if (run.second->width != image.width || run.second->height != image.height)
        throw Failure("the second picture is " + std::to_string(run.second->width) + "x" +
                      std::to_string(run.second->height) + ", this one " + std::to_string(image.width) + "x" +
                      std::to_string(image.height) + "; they must have the same size");
    std::vector<unsigned char> source = run.second->rgba, mask = wideMask(run);
    const int maskWidth = run.mask ? run.mask->width : image.width;
    const int maskHeight = run.mask ? run.mask->height : image.height;
    float params[] = {static_cast<float>(run.values.integer("left")),
                      static_cast<float>(run.values.integer("top")),
                      static_cast<float>(maskWidth),
                      static_cast<float>(maskHeight),
                      static_cast<float>(run.values.integer("blurRadius")),
                      run.values.number("strength")};
    TableBase::ImageProcessWithAlphaMix(image.rgba.data(), image.width, image.height, source.data(),
                                        mask.data(), params);
}

Effect sharpEffect() {
    Effect effect;
    effect.name = "sharp";
    effect.title = "Sharpen or soften";
    effect.operation = "ZelImageCore::TableBase::ImageProcessWithSharp";
    effect.summary = "Sharpens against a blurred copy (unsharp mask)";
    effect.advice =
        "Last, after everything else, and at the size that will be shown. Amount 0 leaves it, 0.2 to 0.5 is "
        "print, above 1 edges get seams; below 0 it softens.";
    effect.parameters = {
        numberParameter("amount", -1, 10, "0.2",
                        "0 leaves the picture; above 0 sharpens by four times as much; below 0 softens"),
        in("pixels", integerParameter(
                         "radius", 0, kLargestRadius, "0",
                         "radius of the blurred copy in pixels; 0: one for every 640 of the longer side"))};
    effect.example = "zel apply sharp photo.jpg -o crisp.jpg --set amount=0.3";
    effect.run = runSharp;
    return effect;
}

Effect gaussBlurEffect() {
    Effect effect;
    effect.name = "gauss-blur";
    effect.title = "Blur";
    effect.operation = "ZelImageCore::TableBase::ImageProcessWithGaussBlur";
    effect.summary = "Blurs with a triangular kernel that looks like a Gaussian";
    effect.advice =
        "For a dreamy ground or to hide what should not be read. Radius 0 leaves it; a quarter of the "
        "shorter side is the most.";
    effect.parameters = {
        in("pixels", integerParameter("radius", 0, kLargestRadius, "8",
                                      "radius in pixels, limited to a quarter of the shorter side"))};
    effect.example = "zel apply gauss-blur photo.jpg -o soft.jpg --set radius=20";
    effect.run = runGaussBlur;
    return effect;
}

Effect mosaicEffect() {
    Effect effect;
    effect.name = "mosaic";
    effect.title = "Mosaic";
    effect.operation = "ZelImageCore::TableBase::ImageProcessWithMosaic";
    effect.summary = "Replaces blocks by their mean colour";
    effect.advice =
        "To hide a face or a number plate: blocks should be at least a fifth of what they hide. Small blocks "
        "can be guessed by who knows the picture.";
    effect.parameters = {in("pixels", integerParameter("blockSize", 1, kLargestSide, "16",
                                                       "side of a block in pixels; 1 acts as 2"))};
    effect.example = "zel apply mosaic photo.jpg -o blocks.png --set blockSize=24";
    effect.run = runMosaic;
    return effect;
}

Effect colorMixingEffect() {
    Effect effect;
    effect.name = "color-mixing";
    effect.title = "Brightness, contrast, saturation";
    effect.operation = "ZelImageCore::TableBase::ImageProcessWithColorMixing";
    effect.summary = "Brightness, contrast, saturation and a logarithmic lift, in this order";
    effect.advice =
        "For basic corrections, in small steps. All at 0 leaves the picture; saturation -100 is black and "
        "white, contrast 100 leaves little between.";
    effect.parameters = {
        numberParameter("brightness", -100, 100, "0", "0 is neutral"),
        numberParameter("contrast", -100, 100, "0", "0 is neutral"),
        integerParameter("saturation", -100, 400, "0", "change in percent; -100 is grey"),
        integerParameter("lift", -200, 200, "0", "tenths; 25 lifts white by 160 levels, below 0 darkens")};
    effect.example = "zel apply color-mixing photo.jpg -o vivid.jpg --set contrast=20 --set saturation=25";
    effect.run = runColorMixing;
    return effect;
}

Effect alphaMixEffect() {
    Effect effect;
    effect.name = "alpha-mix";
    effect.title = "Mix a second picture";
    effect.operation = "ZelImageCore::TableBase::ImageProcessWithAlphaMix";
    effect.summary = "Mixes a second picture of the same size into a region, by a mask";
    effect.advice =
        "To lay a retouched copy over the original where it is wanted. Strength 0 leaves the picture, 1 "
        "shows the second one under white.";
    effect.parameters = {
        in("pixels", integerParameter("left", -kLargestSide, kLargestSide, "0",
                                      "left edge of the mask in the picture")),
        in("pixels",
           integerParameter("top", -kLargestSide, kLargestSide, "0", "top edge of the mask in the picture")),
        in("pixels", integerParameter("blurRadius", 0, kLargestRadius, "0", "blur of the mask in pixels")),
        numberParameter("strength", 0, 1, "1", "share of the second picture where the mask is white")};
    effect.mask = ZEL_OPTIONAL;
    effect.second = ZEL_REQUIRED;
    effect.example = "zel apply alpha-mix photo.png --second edit.png --mask mask.png -o mixed.png";
    effect.run = runAlphaMix;
    return effect;
}

}  // namespace

std::vector<Effect> tableBaseEffects() {
    return {sharpEffect(), gaussBlurEffect(), mosaicEffect(), colorMixingEffect(), alphaMixEffect()};
}

}  // namespace zel
