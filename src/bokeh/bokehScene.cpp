#include "bokeh/bokehScene.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "bokeh/blurStrength.h"
#include "bokeh/disparityMap.h"
#include "bokeh/focusDecision.h"
#include "bokeh/radiusMap.h"
#include "bokeh/sceneLog.h"
#include "bokeh/spinIndex.h"
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
constexpr float kForegroundInProportion = 0.5f;
constexpr int kSharpRadius = 2;  // pixels of the picture; a focus point with more is out of focus

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
    Plane<Byte> hair, kernel;
    RgbaImage small;
    DisparityMap disparityMap;
    std::optional<FocusBand> band;
    Plane<Byte> disparity;    // of the working picture; without depth one plane of zeros
    Plane<Byte> radiusPlane;  // working pixels for the convolution, then pixels of the picture

    int smallWidth() const { return strength.smallWidth; }
    int smallHeight() const { return strength.smallHeight; }
    /// Whether any hair keeps the photograph.
    bool hasHair() const { return !job.constantRadius && job.hairMask.valid(); }
    /// Where it is decided, the strength is fitted to it.
    const FocusBand& focusBand() {
        if (!band) {
            const FocusPoint focus{limitedFraction(job.focus.y), limitedFraction(job.focus.x)};
            band = decideFocus(disparityMap, job.focusPoints, focus, strength);
        }
        return *band;
    }
    RadiusRule rule() const {
        return job.inProportion ? RadiusRule{.inProportion = true, .foregroundSlope = kForegroundInProportion}
                                : RadiusRule();
    }
    float smallBlurRadius() const {
        // The size of a photograph of 12 megapixels, for which it was chosen.
        constexpr float kUsualShortSide = 3024.0f;
        const auto side = static_cast<float>(std::min(job.source.width, job.source.height));
        return job.inProportion ? kSmallBlurRadius * std::min(side / kUsualShortSide, 1.0f)
                                : kSmallBlurRadius;
    }
    void computeStrength();
    void fillRadii(const std::array<Byte, 256>& table) {
        std::transform(disparity.data(), disparity.data() + disparity.size(), radiusPlane.data(),
                       [&](Byte value) { return table[value]; });
    }
    void logFocusPoints() const;
};

BokehScene::BokehScene(BackEnd backEnd) : m_passes(makePasses(backEnd)) {}

bool BokehScene::load(const std::string& resourceDir) {
    return m_passes->load(resourceDir);
}

RenderOutcome BokehScene::render(const RenderJob& job) {
    const RenderOutcome outcome = draw(job);
    if (outcome == RenderOutcome::noContext)
        sceneLog().error("nothing rendered: no context of OpenGL 3.3 or later is current, or it was lost");
    if (outcome == RenderOutcome::faultyShaders)
        sceneLog().error("nothing rendered: a shader is missing or does not link");
    if (outcome == RenderOutcome::tooLarge)
        sceneLog().error("nothing rendered: OpenGL has no textures of %d x %d here", job.source.width,
                         job.source.height);
    return outcome;
}

RenderOutcome BokehScene::draw(const RenderJob& job) {
    if (const RenderOutcome began = m_passes->begin(job.source); began != RenderOutcome::drawn) return began;
    Frame frame(job);
    prepareKernel(frame);
    frame.computeStrength();
    sceneLog().debug("scale_factor: %.8f", static_cast<double>(frame.strength.scaleFactor));
    sceneLog().debug("scale ratio: %.8f", static_cast<double>(frame.strength.scaleRatio));
    prepareHair(frame);
    frame.small = RgbaImage(frame.smallWidth(), frame.smallHeight());
    if (const RenderOutcome scaled = m_passes->downscale(frame.small.view()); scaled != RenderOutcome::drawn)
        return scaled;
    prepareRadii(frame);
    if ((frame.radii.largest <= kNoRadius && !job.constantRadius) || !blur(frame)) m_passes->keepSharp();
    frame.fillRadii(frame.radii.full);
    frame.logFocusPoints();
    return m_passes->compose({.radius = frame.radiusPlane.view(),
                              .scaleRatio = frame.strength.scaleRatio,
                              .hair = frame.hair.view(),
                              .smallBlurRadius = frame.smallBlurRadius(),
                              .limitGrain = job.inProportion},
                             job.target);
}

void BokehScene::Frame::computeStrength() {
    const int width = job.source.width, height = job.source.height;
    const auto withFactor = [&](float factor) {
        return computeBlurStrength(width, height, factor, job.blurLevel, !job.focusPoints.empty(),
                                   job.inProportion);
    };
    const float factor = job.resolutionFactor > 0.0f ? job.resolutionFactor : 1.0f;
    strength = withFactor(factor);
    if (!job.inProportion) return;
    const float largest =
        job.constantRadius ? strength.radius : largestRadius(disparityMap, focusBand(), strength, rule());
    const float fitted = strength.radiusPerDisparity;
    strength = withFactor(factorInProportion(width, height, factor, largest));
    strength.radiusPerDisparity = fitted;  // pixels of the picture
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
    if (shape.valid() && scalePlane(shape, kernel.view(), YuvFilter::bilinear))
        frame.kernel = std::move(kernel);
}

void BokehScene::prepareHair(Frame& frame) {
    if (!frame.hasHair()) return;
    const int width = frame.strength.halfWidth, height = frame.strength.halfHeight;
    const PlaneView<const Byte> mask = frame.job.hairMask;
    const ConstImageView source = frame.job.source;
    frame.hair = Plane<Byte>(width, height);
    scalePlane(mask, frame.hair.view(), YuvFilter::bilinear);
    if (frame.job.hairHasEdges) return;
    RgbaImage guide(width, height);
    scaleArgb(source, guide.view(), YuvFilter::linear);
    GuidedFilterPlane(frame.hair.view(), guide.view(), kHairGuideRadius, kGuideEpsilon, kGuideScale);
}

void BokehScene::prepareRadii(Frame& frame) {
    const int width = frame.smallWidth(), height = frame.smallHeight();
    frame.disparity = Plane<Byte>(width, height);
    frame.radiusPlane = Plane<Byte>(width, height);
    if (frame.job.constantRadius) {
        frame.radii = constantRadii(frame.strength, frame.rule());
    } else {
        if (const DisparityMap& map = frame.disparityMap; !map.isEmpty()) {
            const bool shrinks = width < map.width() || height < map.height();
            scalePlane(map.view(), frame.disparity.view(), shrinks ? YuvFilter::box : YuvFilter::linear);
            GuidedFilterPlane(frame.disparity.view(), frame.small.view(), kDisparityGuideRadius,
                              kGuideEpsilon, kGuideScale);
        }
        const FocusBand& band = frame.focusBand();
        frame.radii = radiiByDepth(frame.disparityMap, band, frame.strength, frame.rule());
    }
    frame.fillRadii(frame.radii.working);
}

bool BokehScene::blur(const Frame& frame) {
    const RenderJob& job = frame.job;
    const Plane<Byte> spin =
        job.spin ? spinIndexPlane(frame.smallWidth(), frame.smallHeight()) : Plane<Byte>();
    return m_passes->blur(
        {.convolution = {.image = frame.small.view(),
                         .radius = job.constantRadius ? PlaneView<const Byte>() : frame.radiusPlane.view(),
                         .maximumRadius = static_cast<int>(std::lround(frame.radii.largest)),
                         .kernel = frame.kernel.view(),
                         .spin = spin.view(),
                         .look = lookValues(job.look)},
         .type = job.type,
         .cpuOnly = job.cpuOnly,
         .smooth = frame.strength.scaleRatio >= kSmoothFromRatio});
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
        if (radiusPlane.row(row)[column] <= kSharpRadius)
            sceneLog().debug("face[%d] is available", static_cast<int>(i));
    }
}

}  // namespace zellab::Bokeh
