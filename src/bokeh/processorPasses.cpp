#include "bokeh/processorPasses.h"

#include <memory>
#include <optional>
#include <utility>

#include "bokeh/boxScale.h"
#include "bokeh/composition.h"
#include "bokeh/grainMap.h"
#include "bokeh/passTables.h"
#include "bokeh/smoothRows.h"
#include "zellab/imageproc/core/parallelRows.h"

namespace zellab::Bokeh {

namespace {

/// A copy made by all workers, pixels that nothing has touched before.
struct Photograph {
    explicit Photograph(const ConstImageView& source)
        : pixels(std::make_unique_for_overwrite<Byte[]>(sampleCount(source.width, source.height, 4))),
          view(pixels.get(), source.width, source.height) {
        parallelRows(source.height, [&](int begin, int end) {
            const int rows = end - begin;
            copyPixels(source.crop(0, begin, source.width, rows), view.crop(0, begin, source.width, rows));
        });
    }
    std::unique_ptr<Byte[]> pixels;
    ImageView view;
};

}  // namespace

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
    GrainMap grain = grainMap(m_photograph);
    if (pass.limitGrain) limitGrain(grain);
    std::optional<Photograph> copy;
    if (m_photograph.data == target.data) copy.emplace(m_photograph);
    composePicture({.photograph = copy ? copy->view : m_photograph,
                    .soft = m_soft,
                    .radius = pass.radius,
                    .scaleRatio = pass.scaleRatio,
                    .hair = pass.hair,
                    .smallBlurRadius = pass.smallBlurRadius,
                    .grain = &grain,
                    .noise = &m_noise},
                   target);
    return RenderOutcome::drawn;
}

}  // namespace zellab::Bokeh
