#include "bokeh/processorPasses.h"

#include <utility>

#include "bokeh/boxScale.h"
#include "bokeh/composition.h"
#include "bokeh/grainMap.h"
#include "bokeh/passTables.h"
#include "bokeh/smoothRows.h"

namespace zellab::Bokeh {

ProcessorPasses::ProcessorPasses() : m_noise(noisePixels()) {}

/// There is nothing to read.
bool ProcessorPasses::load(const std::string& /*resourceDir*/) {
    return true;
}

RenderOutcome ProcessorPasses::begin(const ConstImageView& photograph) {
    m_photograph = photograph;
    return RenderOutcome::drawn;
}

RenderOutcome ProcessorPasses::downscale(const ImageView& small) {
    boxScale(m_photograph, small);
    m_small = small;
    return RenderOutcome::drawn;
}

void ProcessorPasses::keepSharp() {
    m_soft = m_small;
}

bool ProcessorPasses::blur(const BlurPass& pass) {
    if (pass.type != kStripBokeh || !isKernelStrip(pass.convolution.kernel)) return false;
    m_blurred = RgbaImage(m_small.width, m_small.height);
    convolvePicture(pass.convolution, m_blurred.view());
    if (pass.smooth) {
        RgbaImage smoothed(m_small.width, m_small.height);
        smoothPicture(m_blurred.view(), smoothed.view());
        m_blurred = std::move(smoothed);
    }
    m_soft = m_blurred.view();
    return true;
}

RenderOutcome ProcessorPasses::compose(const ComposePass& pass, const ImageView& target) {
    const GrainMap grain = grainMap(m_photograph);
    const bool inPlace = m_photograph.data == target.data;
    const RgbaImage copy = inPlace ? copyOf(m_photograph) : RgbaImage();
    composePicture({.photograph = inPlace ? copy.view() : m_photograph,
                    .soft = m_soft,
                    .radius = pass.radius,
                    .scaleRatio = pass.scaleRatio,
                    .hair = pass.hair,
                    .grain = &grain,
                    .noise = &m_noise},
                   target);
    return RenderOutcome::drawn;
}

}  // namespace zellab::Bokeh
