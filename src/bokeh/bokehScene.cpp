#include "bokeh/bokehScene.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "bokeh/blurStrength.h"
#include "bokeh/disparityMap.h"
#include "bokeh/focusDecision.h"
#include "bokeh/passes.h"
#include "bokeh/radiusMap.h"
#include "bokeh/sceneLog.h"
#include "bokeh/spinIndex.h"
#include "gl/glApi.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/edgeaware/guidedFilterPlane.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace zellab::Bokeh {
namespace {

constexpr int kFreeKernelSide = 300;      // pixels
constexpr float kNoRadius = 0.00001f;     // blurs up to this are none
constexpr float kSmoothFromRatio = 2.0f;  // from here on the working picture is enlarged visibly
constexpr float kGuideEpsilon = 0.1f;
constexpr float kGuideScale = 4.0f;
constexpr int kHairGuideRadius = 2, kDisparityGuideRadius = 1;
constexpr float kDispersion = 0.0f;  // red and blue stay together
constexpr int kSharpRadius = 2;      // pixels of the picture; a focus point with more is out of focus

Texture2D byteTexture(int width, int height, int order, const Byte* data) {
    return Texture2D(width, height, order, kTypeByte, data);
}

float limitedFraction(float fraction) {
    constexpr float kMiddle = 0.5f;
    return std::isnan(fraction) ? kMiddle : std::clamp(fraction, 0.0f, 1.0f);
}

}  // namespace

gl::RendererLog& sceneLog() {
    static gl::RendererLog log;
    return log;
}

/// What one render hands from step to step.
struct BokehScene::Frame {
    explicit Frame(const RenderJob& toDo) : job(toDo) { disparityMap.set(job.disparity); }

    const RenderJob& job;
    BlurStrength strength;
    RadiusTables radii;
    Texture2D photograph, hair, small, radius, soft, kernel;
    Plane<Byte> kernelStrip;  // none for the free shape
    RgbaImage smallPixels;
    DisparityMap disparityMap;
    Plane<Byte> disparity;    // of the working picture; without depth one plane of zeros
    Plane<Byte> radiusPlane;  // working pixels for the convolution, then pixels of the picture

    int smallWidth() const { return strength.smallWidth; }
    int smallHeight() const { return strength.smallHeight; }
    /// Whether any hair keeps the photograph.
    bool hasHair() const { return !job.constantRadius && job.hairMask.valid(); }
    void fillRadii(const std::array<Byte, 256>& table) {
        std::transform(disparity.data(), disparity.data() + disparity.size(), radiusPlane.data(),
                       [&](Byte value) { return table[value]; });
    }
    void logFocusPoints() const;
};

BokehScene::BokehScene() = default;

BokehScene::~BokehScene() {
    m_shaders.release();
}

bool BokehScene::create(const std::string& resourceDir) {
    m_noise = makeNoiseTexture();
    return m_shaders.load(resourceDir);
}

RenderOutcome BokehScene::render(const RenderJob& job) {
    const RenderOutcome outcome = draw(job);
    if (outcome == RenderOutcome::noContext)
        sceneLog().error("nothing rendered: no context of OpenGL 3.3 or later is current");
    if (outcome == RenderOutcome::faultyShaders)
        sceneLog().error("nothing rendered: a shader is missing or does not link");
    if (outcome == RenderOutcome::tooLarge)
        sceneLog().error("nothing rendered: OpenGL has no textures of %d x %d here", job.source.width,
                         job.source.height);
    return outcome;
}

/// The pass functions tell that they did not draw, not why; without an unsound shader it is for want of a
/// texture.
RenderOutcome BokehScene::draw(const RenderJob& job) {
    if (!gl::glUsable()) return RenderOutcome::noContext;
    GLint longest = 0;
    gl::glCore().getIntegerv(GL_MAX_TEXTURE_SIZE, &longest);
    if (std::max(job.source.width, job.source.height) > longest) return RenderOutcome::tooLarge;
    const auto failure = [this] {
        return m_shaders.isSound() ? RenderOutcome::tooLarge : RenderOutcome::faultyShaders;
    };
    const int width = job.source.width, height = job.source.height;
    Frame frame(job);
    prepareKernel(frame);
    frame.strength =
        computeBlurStrength(width, height, job.resolutionFactor > 0.0f ? job.resolutionFactor : 1.0f,
                            job.blurLevel, !job.focusPoints.empty());
    sceneLog().debug("scale_factor: %.8f", static_cast<double>(frame.strength.scaleFactor));
    sceneLog().debug("scale ratio: %.8f", static_cast<double>(frame.strength.scaleRatio));
    frame.photograph = Texture2D(width, height, width, kOrderRgba, kTypeByte, job.source.data);
    prepareHair(frame);

    const int smallWidth = frame.smallWidth(), smallHeight = frame.smallHeight();
    frame.smallPixels = RgbaImage(smallWidth, smallHeight);
    frame.small = byteTexture(smallWidth, smallHeight, kOrderRgba, nullptr);
    if (!frame.photograph.isComplete() || !frame.small.isComplete()) return RenderOutcome::tooLarge;
    if (!downscale(m_shaders, frame.photograph, frame.small) ||
        !frame.small.read(0, 0, smallWidth, smallHeight, frame.smallPixels.data()))
        return failure();
    prepareRadii(frame);
    frame.soft = byteTexture(smallWidth, smallHeight, kOrderRgba, nullptr);
    if ((frame.radii.largest <= kNoRadius && !job.constantRadius) || !convolve(frame))
        frame.soft.write(0, 0, smallWidth, smallHeight, frame.smallPixels.data());

    frame.fillRadii(frame.radii.full);
    frame.radius.write(0, 0, smallWidth, smallHeight, frame.radiusPlane.data());
    frame.logFocusPoints();
    const Texture2D out = byteTexture(width, height, kOrderRgba, nullptr);
    if (!out.isComplete()) return RenderOutcome::tooLarge;
    const bool composed =
        compose(m_shaders, {frame.soft, m_noise, frame.photograph, frame.radius, frame.kernel}, kDispersion,
                frame.strength.scaleRatio, out) &&
        // Without hair the blend would only copy the picture, which takes a sixth of a render in software.
        (!frame.hasHair() || composeHair(m_shaders, out, frame.hair, frame.photograph));
    if (!composed || !m_shaders.isSound()) return failure();
    const Texture2D& result = frame.hasHair() ? frame.photograph : out;
    return result.read(0, 0, width, height, job.target.data) ? RenderOutcome::drawn : failure();
}

void BokehScene::prepareKernel(Frame& frame) {
    const bool strip = frame.job.type == kStripBokeh;
    if (!strip && frame.job.type != kFreeBokeh) {
        sceneLog().error("bokeh type [%04hX] not support", static_cast<unsigned short>(frame.job.type));
        return;
    }
    const PlaneView<const Byte> shape = frame.job.kernel;
    Plane<Byte> kernel =
        strip ? Plane<Byte>(kStripWidth, kStripHeight) : Plane<Byte>(kFreeKernelSide, kFreeKernelSide);
    if (!shape.valid() || !scalePlane(shape, kernel.view(), YuvFilter::bilinear)) return;
    frame.kernel = byteTexture(kernel.width(), kernel.height(), kOrderRed, kernel.data());
    if (strip) frame.kernelStrip = std::move(kernel);
}

void BokehScene::prepareHair(Frame& frame) {
    if (!frame.hasHair()) return;
    const int width = frame.strength.halfWidth, height = frame.strength.halfHeight;
    const PlaneView<const Byte> mask = frame.job.hairMask;
    const ConstImageView source = frame.job.source;
    Plane<Byte> hair(width, height);
    RgbaImage guide(width, height);
    scalePlane(mask, hair.view(), YuvFilter::bilinear);
    scaleArgb(source, guide.view(), YuvFilter::linear);
    GuidedFilterPlane(hair.view(), guide.view(), kHairGuideRadius, kGuideEpsilon, kGuideScale);
    frame.hair = byteTexture(width, height, kOrderRed, hair.data());
}

void BokehScene::prepareRadii(Frame& frame) {
    const int width = frame.smallWidth(), height = frame.smallHeight();
    frame.disparity = Plane<Byte>(width, height);
    frame.radiusPlane = Plane<Byte>(width, height);
    if (frame.job.constantRadius) {
        frame.radii = constantRadii(frame.strength);
    } else {
        if (const DisparityMap& map = frame.disparityMap; !map.isEmpty()) {
            const bool shrinks = width < map.width() || height < map.height();
            scalePlane(map.view(), frame.disparity.view(), shrinks ? YuvFilter::box : YuvFilter::linear);
            GuidedFilterPlane(frame.disparity.view(), frame.smallPixels.view(), kDisparityGuideRadius,
                              kGuideEpsilon, kGuideScale);
        }
        const FocusPoint focus{limitedFraction(frame.job.focus.y), limitedFraction(frame.job.focus.x)};
        const FocusBand band = decideFocus(frame.disparityMap, frame.job.focusPoints, focus, frame.strength);
        frame.radii = radiiByDepth(frame.disparityMap, band, frame.strength);
    }
    frame.fillRadii(frame.radii.working);
    frame.radius = byteTexture(width, height, kOrderRed, frame.radiusPlane.data());
}

/// The working picture blurred into frame.soft.
bool BokehScene::convolve(Frame& frame) {
    const int width = frame.smallWidth(), height = frame.smallHeight();
    const LookValues look = lookValues(frame.job.look);
    const Texture2D blur = byteTexture(width, height, kOrderRgba, nullptr);
    const Texture2D weights(width, height, kOrderRed, kTypeFloat, nullptr);
    if (!ratio(m_shaders, frame.small, look, weights) || !convolveByType(frame, weights, look, blur))
        return false;
    return frame.strength.scaleRatio < kSmoothFromRatio ? copy(m_shaders, blur, frame.soft)
                                                        : smoothCopy(m_shaders, blur, frame.soft);
}

bool BokehScene::convolveByType(const Frame& frame, const Texture2D& weights, const LookValues& look,
                                const Texture2D& blur) {
    const RenderJob& job = frame.job;
    const int largest = static_cast<int>(std::lround(frame.radii.largest));
    const ConvolutionTextures textures{.small = frame.small,
                                       .kernel = frame.kernel,
                                       .ratio = weights,
                                       .radius = job.constantRadius ? Texture2D() : frame.radius};
    if (job.type == kFreeBokeh)
        return Bokeh::convolveFree(m_shaders, textures, look, largest, FreeShape(), blur);
    if (job.type != kStripBokeh) return false;
    radial(m_shaders, byteTexture(blur.width(), blur.height(), kOrderRed, nullptr));
    const Plane<Byte> spin = job.spin ? spinIndexPlane(blur.width(), blur.height()) : Plane<Byte>();
    const ConvolutionSource processor{
        .image = frame.smallPixels.view(),
        .radius = job.constantRadius ? PlaneView<const Byte>() : frame.radiusPlane.view(),
        .maximumRadius = largest,
        .kernel = frame.kernelStrip.view(),
        .spin = spin.view(),
        .look = look};
    return Bokeh::convolve(m_shaders, textures, processor, job.cpuOnly || rendersOnProcessor(), blur);
}

/// Says which focus points came out sharp.
void BokehScene::Frame::logFocusPoints() const {
    const auto place = [](float fraction, int size) {
        const float at = std::round(fraction * static_cast<float>(size - 1));
        return static_cast<int>(at > 0.0f ? std::min(at, static_cast<float>(size - 1)) : 0.0f);
    };
    for (std::size_t i = 0; i < job.focusPoints.size(); ++i) {
        const int row = place(job.focusPoints[i].y, smallHeight());
        const int column = place(job.focusPoints[i].x, smallWidth());
        if (radiusPlane.row(row)[column] <= kSharpRadius) sceneLog().debug("face[%zu] is available", i);
    }
}

}  // namespace zellab::Bokeh
