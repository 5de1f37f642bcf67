#pragma once

#include <string>
#include <vector>

#include "bokeh/disparityMap.h"
#include "bokeh/focusPoints.h"
#include "bokeh/lookParameters.h"
#include "gl/imageBuffer.h"
#include "gl/shaderCache.h"
#include "gl/texture2D.h"

namespace zellab::Bokeh {

struct BlurStrength;
struct RadiusTables;

/// The two ways of drawing points of light.
enum BokehType : std::int16_t {
    kStripBokeh = 0,  ///< a strip of six frames, shared between both processors
    kFreeBokeh = 1,   ///< one kernel of 300 by 300, on the graphics processor alone
};

/// One blurred picture from a picture, its disparity and a shape of bokeh. Lives for one render, on the
/// thread whose OpenGL context is current from create() to the destructor.
class BokehScene {
public:
    BokehScene();
    /// Releases the programs first, then the textures.
    ~BokehScene();
    BokehScene(const BokehScene&) = delete;
    BokehScene& operator=(const BokehScene&) = delete;

    /// Loads the shader file of the folder and draws the noise.
    /// @return whether the shader file was read whole; without it a render draws nothing
    bool create(const std::string& resourceDir);

    /// Fractions of the picture, limited to 0..1; NaN is ignored.
    void setFocusPoint(float x, float y);
    /// Ignored when not above 0. Below 1 the working picture is smaller.
    void setResolutionFactor(float factor);
    /// 0..100.
    void setBlurLevel(int level) { m_blurLevel = level; }
    void setLook(const Look& look) { m_look = look; }
    void setBokehType(std::int16_t type) { m_bokehType = type; }
    void setSpin(bool on) { m_spin = on; }
    /// One radius everywhere, without depth.
    void setConstantRadius(bool on) { m_constantRadius = on; }
    /// All tiles of the convolution on the processor.
    void setCpuOnly(bool on) { m_cpuOnly = on; }
    /// count records of x, y, width, height as fractions of the picture.
    void setFaces(int count, const float* faces) { m_focusPoints = focusPointsOfFaces(count, faces); }
    /// Copied; larger is nearer.
    void setDisparity(PlaneView<const Byte> plane) { m_disparity.set(plane); }
    /// Copied; hair keeps the sharp picture. No mask: no hair.
    void setHairMask(PlaneView<const Byte> mask);
    /// The shape, by the type that is set. A strip of any size is scaled to what the convolution reads.
    void setKernel(PlaneView<const Byte> plane);

    /// Renders packed RGBA rows of width by height pixels from `source` into `target`; both may be the same.
    /// @param inFocus  null, or a flag for each focus point: whether it came out sharp
    /// @return whether `target` was written; it is left alone where OpenGL cannot be had
    bool render(const Byte* source, Byte* target, int width, int height, std::vector<Byte>* inFocus);

private:
    struct Frame;

    /// Whether any hair keeps the photograph.
    bool hasHair() const { return !m_constantRadius && !m_hairMask.isEmpty(); }
    void prepareHair(Frame& frame) const;
    void prepareRadii(Frame& frame) const;
    bool convolve(Frame& frame);
    void flagFocusPoints(const Frame& frame, std::vector<Byte>* inFocus) const;

    std::vector<FocusPoint> m_focusPoints;
    FocusPoint m_focus;
    std::int16_t m_bokehType = kStripBokeh;
    Look m_look;
    float m_resolutionFactor = 1.0f;
    int m_blurLevel = 20;
    bool m_spin = true;
    bool m_constantRadius = false;
    bool m_cpuOnly = false;
    ShaderCache m_shaders;
    DisparityMap m_disparity;
    ImageBuffer m_hairMask;
    ImageBuffer m_kernelImage;
    Texture2D m_kernelTexture;
    Texture2D m_noise;
};

}  // namespace zellab::Bokeh
