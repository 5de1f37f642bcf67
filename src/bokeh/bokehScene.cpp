#include "bokeh/bokehScene.h"

#include <algorithm>
#include <cmath>

#include "bokeh/blurStrength.h"
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

float limitedFraction(float fraction, float before) {
    return std::isnan(fraction) ? before : std::clamp(fraction, 0.0f, 1.0f);
}

}  // namespace

gl::RendererLog& sceneLog() {
    static gl::RendererLog log;
    return log;
}

/// What one render hands from step to step.
struct BokehScene::Frame {
    ConstImageView source;
    BlurStrength strength;
    RadiusTables radii;
    Texture2D photograph, hair, small, radius, soft;
    std::vector<Byte> smallPixels;
    Plane<Byte> disparity;    // of the working picture; without depth one plane of zeros
    Plane<Byte> radiusPlane;  // working pixels for the convolution, then pixels of the picture

    int smallWidth() const { return strength.smallWidth; }
    int smallHeight() const { return strength.smallHeight; }
    void fillRadii(const std::array<Byte, 256>& table) {
        std::transform(disparity.data(), disparity.data() + disparity.size(), radiusPlane.data(),
                       [&](Byte value) { return table[value]; });
    }
};

BokehScene::BokehScene() = default;

BokehScene::~BokehScene() {
    m_shaders.release();
}

bool BokehScene::create(const std::string& resourceDir) {
    m_noise = makeNoiseTexture();
    return m_shaders.load(resourceDir);
}

void BokehScene::setFocusPoint(float x, float y) {
    m_focus = {limitedFraction(y, m_focus.y), limitedFraction(x, m_focus.x)};
}

void BokehScene::setResolutionFactor(float factor) {
    if (factor > 0.0f) m_resolutionFactor = factor;
}

void BokehScene::setHairMask(PlaneView<const Byte> mask) {
    m_hairMask = mask.valid() ? ImageBuffer(mask.width, mask.height, 1, mask.data) : ImageBuffer();
}

void BokehScene::setKernel(PlaneView<const Byte> plane) {
    if (m_bokehType != kStripBokeh && m_bokehType != kFreeBokeh) {
        sceneLog().error("bokeh type [%04hX] not support", static_cast<unsigned short>(m_bokehType));
        return;
    }
    const bool strip = m_bokehType == kStripBokeh;
    const int width = strip ? kStripWidth : kFreeKernelSide, height = strip ? kStripHeight : kFreeKernelSide;
    ImageBuffer kernel(width, height, 1, nullptr);
    if (!plane.valid() || !scalePlane(plane, {kernel.data(), width, height}, YuvFilter::bilinear)) return;
    m_kernelTexture = byteTexture(width, height, kOrderRed, kernel.data());
    if (strip) m_kernelImage = kernel;
}

bool BokehScene::render(const Byte* source, Byte* target, int width, int height, std::vector<Byte>* inFocus) {
    if (!gl::glUsable()) return false;
    Frame frame;
    frame.source = {source, width, height};
    frame.strength =
        computeBlurStrength(width, height, m_resolutionFactor, m_blurLevel, !m_focusPoints.empty());
    sceneLog().debug("scale_factor: %.8f", static_cast<double>(frame.strength.scaleFactor));
    sceneLog().debug("scale ratio: %.8f", static_cast<double>(frame.strength.scaleRatio));
    frame.photograph = Texture2D(width, height, width, kOrderRgba, kTypeByte, source);
    prepareHair(frame);

    const int smallWidth = frame.smallWidth(), smallHeight = frame.smallHeight();
    frame.smallPixels.resize(sampleCount(smallWidth, smallHeight, 4));
    frame.small = byteTexture(smallWidth, smallHeight, kOrderRgba, nullptr);
    if (!downscale(m_shaders, frame.photograph, frame.small) ||
        !frame.small.read(0, 0, smallWidth, smallHeight, frame.smallPixels.data()))
        return false;  // without its programs the render would show whatever the memory held
    prepareRadii(frame);
    frame.soft = byteTexture(smallWidth, smallHeight, kOrderRgba, nullptr);
    if ((frame.radii.largest <= kNoRadius && !m_constantRadius) || !convolve(frame))
        frame.soft.write(0, 0, smallWidth, smallHeight, frame.smallPixels.data());

    frame.fillRadii(frame.radii.full);
    frame.radius.write(0, 0, smallWidth, smallHeight, frame.radiusPlane.data());
    flagFocusPoints(frame, inFocus);
    const Texture2D out = byteTexture(width, height, kOrderRgba, nullptr);
    if (!compose(m_shaders, {frame.soft, m_noise, frame.photograph, frame.radius, m_kernelTexture},
                 kDispersion, frame.strength.scaleRatio, out))
        return false;
    // Without hair the blend would only copy the picture, which takes a sixth of a render in software.
    if (!hasHair()) return out.read(0, 0, width, height, target);
    return composeHair(m_shaders, out, frame.hair, frame.photograph) &&
           frame.photograph.read(0, 0, width, height, target);
}

void BokehScene::prepareHair(Frame& frame) const {
    if (!hasHair()) return;
    const int width = frame.strength.halfWidth, height = frame.strength.halfHeight;
    Plane<Byte> hair(width, height);
    std::vector<Byte> guide(sampleCount(width, height, 4));
    scalePlane({m_hairMask.data(), m_hairMask.width(), m_hairMask.height()}, hair.view(),
               YuvFilter::bilinear);
    scaleArgb(frame.source, {guide.data(), width, height}, YuvFilter::linear);
    GuidedFilterPlane(hair.view(), {guide.data(), width, height}, kHairGuideRadius, kGuideEpsilon,
                      kGuideScale);
    frame.hair = byteTexture(width, height, kOrderRed, hair.data());
}

void BokehScene::prepareRadii(Frame& frame) const {
    const int width = frame.smallWidth(), height = frame.smallHeight();
    frame.disparity = Plane<Byte>(width, height);
    frame.radiusPlane = Plane<Byte>(width, height);
    if (m_constantRadius) {
        frame.radii = constantRadii(frame.strength);
    } else {
        if (!m_disparity.isEmpty()) {
            const bool shrinks = width < m_disparity.width() || height < m_disparity.height();
            scalePlane(m_disparity.view(), frame.disparity.view(),
                       shrinks ? YuvFilter::box : YuvFilter::linear);
            GuidedFilterPlane(frame.disparity.view(), {frame.smallPixels.data(), width, height},
                              kDisparityGuideRadius, kGuideEpsilon, kGuideScale);
        }
        const FocusBand band = decideFocus(frame.disparity.view(), m_focusPoints, m_focus, frame.strength);
        frame.radii = radiiByDepth(m_disparity, band, frame.strength);
    }
    frame.fillRadii(frame.radii.working);
    frame.radius = byteTexture(width, height, kOrderRed, frame.radiusPlane.data());
}

/// The working picture blurred into frame.soft.
bool BokehScene::convolve(Frame& frame) {
    const int width = frame.smallWidth(), height = frame.smallHeight();
    const LookValues look = lookValues(m_look);
    const int largest = static_cast<int>(std::lround(frame.radii.largest));
    const Texture2D blur = byteTexture(width, height, kOrderRgba, nullptr);
    const Texture2D weights(width, height, kOrderRed, kTypeFloat, nullptr);
    if (!ratio(m_shaders, frame.small, look, weights)) return false;

    const ConvolutionTextures textures{frame.small, m_kernelTexture, weights,
                                       m_constantRadius ? Texture2D() : frame.radius};
    if (m_bokehType == kStripBokeh) {
        radial(m_shaders, byteTexture(width, height, kOrderRed, nullptr));
        const Plane<Byte> spin = m_spin ? spinIndexPlane(width, height) : Plane<Byte>();
        const ConvolutionSource processor{
            {frame.smallPixels.data(), width, height},
            m_constantRadius ? PlaneView<const Byte>() : frame.radiusPlane.view(),
            largest,
            {m_kernelImage.data(), m_kernelImage.width(), m_kernelImage.height()},
            m_spin ? PlaneView<const Byte>(spin.view()) : PlaneView<const Byte>(),
            look};
        if (!Bokeh::convolve(m_shaders, textures, processor, m_cpuOnly || rendersOnProcessor(), blur))
            return false;
    } else if (m_bokehType != kFreeBokeh ||
               !convolveFree(m_shaders, textures, look, largest, FreeShape(), blur)) {
        return false;
    }
    return frame.strength.scaleRatio < kSmoothFromRatio ? copy(m_shaders, blur, frame.soft)
                                                        : smoothCopy(m_shaders, blur, frame.soft);
}

void BokehScene::flagFocusPoints(const Frame& frame, std::vector<Byte>* inFocus) const {
    const auto place = [](float fraction, int size) {
        const float at = std::round(fraction * static_cast<float>(size - 1));
        return static_cast<int>(at > 0.0f ? std::min(at, static_cast<float>(size - 1)) : 0.0f);
    };
    if (inFocus) inFocus->assign(m_focusPoints.size(), 0);
    for (std::size_t i = 0; i < m_focusPoints.size(); ++i) {
        const int row = place(m_focusPoints[i].y, frame.smallHeight());
        const int column = place(m_focusPoints[i].x, frame.smallWidth());
        if (frame.radiusPlane.view().row(row)[column] > kSharpRadius) continue;
        sceneLog().debug("face[%zu] is available", i);
        if (inFocus) (*inFocus)[i] = 1;
    }
}

}  // namespace zellab::Bokeh
