#include <algorithm>
#include <array>
#include <optional>

#include "CrossPlateform/platform_win/stb_image_util/imageBuffer.h"
#include "ZelEffectsCore/ZelEffect/ZelDepthDefocusRender/defocusInternals.h"
#include "bokeh/backEnd.h"
#include "depth/portraitDepth.h"
#include "libzel/effects/defocusScene.h"
#include "libzel/effects/effectLists.h"
#include "libzel/effects/effectParts.h"
#include "libzel/effects/liveliness.h"
#include "libzel/effects/randomTurn.h"
#include "zel_effects/offscreenContext.h"
#include "zel_effects/zel_effects.h"
#include "zellab/utils/assetFolders.h"

namespace zel {

namespace {

using Render = DefocusCore::ZelDepthDefocusRender;

/// A folder beside the other assets.
constexpr const char* kResourceFolder = "bokeh";

/// Of the grain that the render lays over its blur: the numbers of a process that never asked for others.
constexpr unsigned kGrainSeed = 1;

/// Shares of the work that are done by then.
constexpr double kRenderingAt = 0.5;

struct FocusFraction {
    float x = 0.5f, y = 0.5f;
};

/// The point that was given; otherwise the middle of the largest face, or of the picture.
FocusFraction focusOf(const EffectRun& run) {
    if (const auto point = run.values.point("focus")) return {point->first, point->second};
    const auto& faces = run.faces.faces;
    const auto area = [](const Face& face) { return face.rect[2] * face.rect[3]; };
    const auto largest = std::max_element(faces.begin(), faces.end(),
                                          [&](const Face& a, const Face& b) { return area(a) < area(b); });
    if (largest == faces.end()) return {};
    return {largest->rect[0] + largest->rect[2] / 2, largest->rect[1] + largest->rect[3] / 2};
}

std::vector<float> faceRectangles(const FaceSet& faces) {
    std::vector<float> rectangles;
    for (const Face& face : faces.faces)
        for (const auto value : face.rect) rectangles.push_back(static_cast<float>(value));
    return rectangles;
}

void setShape(Render& render, const EffectRun& run) {
    const std::string name = "defocus_" + run.values.text("shape");
    const std::string file = std::string(kResourceFolder) + "/" + name + ".png";
    int width = 0, height = 0, channels = 0;
    const zellab::ImageBuffer shape(
        ZelImageCore::StbImageUtil::loadImageFromFile(zellab::assetPath(run.surroundings.assets, file), width,
                                                      height, channels, false, true, 0, false, nullptr));
    if (!shape) throw assetFailure(file, "is missing or is no picture");
    render.SetBokehImage(name.c_str(), shape.get(), width, height);
}

/// The depth plane of a render at the size of the picture.
std::vector<unsigned char> nearnessOf(const Render& render, const Image& image) {
    return zellab::scaleDepthPlane({render.DepthPlane(), render.DepthPlaneWidth(), render.DepthPlaneHeight()},
                                   image.width, image.height);
}

void setDepth(Render& render, EffectRun& run, const DefocusScene& scene) {
    const zellab::Plane<unsigned char>& depth = scene.depth;
    if (!render.SetDepthPlane(depth.data(), depth.width(), depth.height()))
        throw Failure("the depth map is empty");
    if (run.depthOut) *run.depthOut = {run.image.width, run.image.height, nearnessOf(render, run.image)};
}

/// What the library has no parameter for, on the finished picture: the ground livelier than the subject.
void enlivenGround(Render& render, EffectRun& run, const FocusFraction& focus, bool usesDepth) {
    const float amount = run.values.number("liveliness");
    if (!(amount > 0.0f)) return;
    Image& image = run.image;
    if (!usesDepth) {
        enliven(image, {}, 0, amount);
        return;
    }
    const std::vector<unsigned char> nearness = nearnessOf(render, image);
    const auto pixel = [](float fraction, int size) {
        return std::min(static_cast<int>(fraction * static_cast<float>(size)), size - 1);
    };
    enliven(image, nearness,
            nearnessAround(nearness, image.width, image.height, pixel(focus.x, image.width),
                           pixel(focus.y, image.height)),
            amount);
}

/// What the render takes beside the parameters.
struct RenderInputs {
    std::vector<float> faces;  // rectangles
    FocusFraction focus;
    bool mask;          // whether there is one
    bool maskHasEdges;  // the picture's
};

/// As strong on a reduced copy, and in a preview, as on the picture itself: the exported forms bound the radius by
/// their working picture, and are weaker the larger the picture is.
bool draw(Render& render, EffectRun& run, RenderInputs& inputs) {
    constexpr float kPreviewResolution = 0.3f;
    const ParameterValues& values = run.values;
    const zellab::ImageView image(run.image.rgba.data(), run.image.width, run.image.height);
    return DefocusCore::DefocusInternals::run(
        render, {.source = image,
                 .target = image,
                 .faceCount = static_cast<int>(inputs.faces.size() / 4),
                 .faces = inputs.faces.data(),
                 .focus = {.y = inputs.focus.y, .x = inputs.focus.x},
                 .resolutionFactor = values.text("resolution") == "preview" ? kPreviewResolution : 1.0f,
                 .blurLevel = values.integer("blurLevel"),
                 .look = {values.number("amount"), values.number("intensity"), values.number("highlights"),
                          values.number("vivid")},
                 .useDepth = values.toggle("useDepth"),
                 .useHairMask = inputs.mask,
                 .hasCurrentContext = true,
                 .hairHasEdges = inputs.maskHasEdges,
                 .inProportion = true});
}

/// Turns a picture that was not drawn into the error that it is: the render itself reports some of these as
/// done and leaves the picture as it was.
void requireDrawn(const Render& render, bool ran) {
    const std::string shaderFile = std::string(kResourceFolder) + "/shader.3.bin";
    if (!ran) throw assetFailure(shaderFile, "is missing or damaged");
    if (render.LastOutcome() == Render::Outcome::faultyShaders)
        throw assetFailure(shaderFile, "lacks a shader or holds one that the OpenGL driver refuses");
    if (render.LastOutcome() != Render::Outcome::drawn) throw Failure("the library refused the picture");
}

/// The OpenGL context that the host allows, current while the object lives, or none where the processor is the
/// better one to draw.
class Canvas {
public:
    explicit Canvas(zel_gl gl) {
        if (gl == ZEL_GL_NEVER) return;
        if (gl == ZEL_GL_IF_THERE) m_own.emplace();
        m_drawsOnProcessor = (m_own && !m_own->isCurrent()) ||
                             zellab::Bokeh::bestBackEnd() == zellab::Bokeh::BackEnd::processor;
        if (m_drawsOnProcessor) m_own.reset();
    }
    bool drawsOnProcessor() const { return m_drawsOnProcessor; }

private:
    std::optional<zellab::OffscreenContext> m_own;
    bool m_drawsOnProcessor = true;
};

void runDefocus(EffectRun& run) {
    const FocusFraction focus = focusOf(run);
    const bool usesDepth = run.values.toggle("useDepth");
    Render render;
    const std::string& assets = run.surroundings.assets;
    render.setResourcePath("", zellab::assetPath(assets, kResourceFolder).c_str());
    setShape(render, run);
    DefocusScene scene;
    if (usesDepth) {
        scene = defocusScene(run);
        setDepth(render, run, scene);
    }
    RenderInputs inputs{faceRectangles(usesDepth ? scene.faces : run.faces), focus, scene.rim != nullptr,
                        scene.found != nullptr};
    std::vector<unsigned char> mask;
    if (scene.rim) {
        mask = scene.rim->samples;
        render.SetHairMaskData(mask.data(), scene.rim->width, scene.rim->height);
    }
    const Canvas canvas(run.surroundings.gl);
    const RandomTurn grain(kGrainSeed);
    run.progress("rendering", kRenderingAt);
    render.DrawOnProcessor(canvas.drawsOnProcessor());
    bool ran = draw(render, run, inputs);
    if (const auto outcome = render.LastOutcome();
        outcome == Render::Outcome::tooLarge || outcome == Render::Outcome::noContext) {
        render.DrawOnProcessor(true);
        setShape(render, run);  // a spin lasts for one run
        ran = draw(render, run, inputs);
    }
    requireDrawn(render, ran);
    enlivenGround(render, run, focus, usesDepth);
}

Effect defocus() {
    Effect effect;
    effect.name = "defocus";
    effect.title = "Depth of field";
    effect.operation = "DefocusCore::ZelDepthDefocusRender::Run";
    effect.summary = "Depth of field: blurs what lies before and behind the subject, by estimated depth";
    effect.advice =
        "To bring a person forward from a busy ground. A blurLevel of 30 is a standard lens, 60 a fast one, "
        "100 a look of its own; focus=X,Y picks one of several people.";
    effect.parameters = {
        integerParameter("blurLevel", 0, 100, "60", "strength of the blur"),
        choiceParameter("shape", {"classic", "hexagon", "heart", "star", "ring", "oval", "spin"}, "classic",
                        "what a point of light becomes"),
        pointParameter("focus", "auto", "X,Y as fractions of the picture, or auto: the largest face"),
        numberParameter("amount", 0.1, 4, "1",
                        "exponent of brightness: above 1 only the brightest lights bloom"),
        numberParameter("intensity", 0, 1, "0.5", "strength of the lights' bloom"),
        numberParameter("highlights", 0, 3, "1", "how far bright pixels outweigh the rest"),
        advanced(numberParameter("vivid", 0, 1, "0",
                                 "how far colourful pixels outweigh grey ones; above 0 the blur itself "
                                 "turns grey: see liveliness")),
        numberParameter("liveliness", 0, 1, "0",
                        "stronger colours and brighter lights in what is out of focus"),
        choiceParameter("resolution", {"full", "preview"}, "full",
                        "preview works on a smaller copy: faster, as strong, a little coarser"),
        choiceParameter(
            "subject", {"auto", "person", "none"}, "auto",
            "keeps people whole, by a network where one is installed: auto where there is a face, person "
            "also "
            "without one. A mask that is given takes its place; with person it counts for the depth as well"),
        toggleParameter("useDepth", "true", "false blurs everything by one radius")};
    effect.gl = ZEL_OPTIONAL;
    effect.faces = ZEL_OPTIONAL;
    effect.mask = effect.depth = effect.depthOut = ZEL_OPTIONAL;
    effect.example =
        "zel apply defocus portrait.jpg -o out.jpg --set blurLevel=60 --set shape=hexagon --depth-out "
        "depth.png";
    effect.run = runDefocus;
    return effect;
}

void runMixMask(EffectRun& run) {
    Image& image = run.image;
    std::vector<unsigned char> top = secondOfPictureSize(run).rgba;
    std::vector<unsigned char> mask;
    mask.reserve(4 * run.mask->samples.size());
    for (const unsigned char m : run.mask->samples) mask.insert(mask.end(), {m, m, m, 255});
    Render render;
    if (!render.MixWidthMask(top.data(), image.rgba.data(), image.width, image.height, mask.data(),
                             run.mask->width, run.mask->height, run.values.number("strength"),
                             run.values.integer("blurRadius")))
        throw Failure("the library refused the picture or the mask");
}

Effect mixMask() {
    Effect effect;
    effect.name = "mix-mask";
    effect.title = "Mix by a mask";
    effect.operation = "DefocusCore::ZelDepthDefocusRender::MixWidthMask";
    effect.summary = "Mixes a second picture into this one where a mask says so";
    effect.advice =
        "To bring back the original where an effect went too far, or the other way round. Strength 0 leaves "
        "the picture, 1 follows the mask.";
    effect.parameters = {
        numberParameter("strength", 0, 1, "1", "1: the mask alone decides"),
        in("pixels", integerParameter("blurRadius", 0, 500, "0", "pixels; softens the mask's edge"))};
    effect.mask = effect.second = ZEL_REQUIRED;
    effect.example = "zel apply mix-mask photo.png -o mixed.png --second retouched.png --mask skin.png";
    effect.run = runMixMask;
    return effect;
}

}  // namespace

std::vector<Effect> defocusEffects() {
    return {defocus(), mixMask()};
}

}  // namespace zel
