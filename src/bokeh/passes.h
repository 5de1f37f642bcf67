#pragma once

#include "bokeh/cpuTiles.h"
#include "bokeh/grainMap.h"
#include "bokeh/lookParameters.h"
#include "gl/shaderCache.h"
#include "gl/texture2D.h"

/// The drawing steps of the defocus render. Each takes its program from the cache, draws over the whole
/// target and returns whether it did; a missing program, an empty texture or sizes that do not fit draw
/// nothing. All run on the thread with the context, whose state they leave as the GL objects do: framebuffer,
/// program and textures unbound.
///
/// The textures of one render, in order:
///     source   W x H   RGBA8     the photograph
///     small    w x h   RGBA8     the working picture           downscale(source)
///     ratio    w x h   R16F      highlight weights             ratio(small)
///     radius   w x h   R8        working pixels, then L        written by the driver
///     blur     w x h   RGBA8     the convolution               convolve(small, ratio, radius)
///     soft     w x h   RGBA8                                   copy(blur) or smoothCopy(blur)
///     out      W x H   RGBA8                                   compose(soft, source, radius)
///     source                     with the hair's share kept    composeHair(out)

namespace zellab::Bokeh {

/// Box-averages `source` into `small`.
bool downscale(ShaderCache& cache, const Texture2D& source, const Texture2D& small);

/// Distance from the centre into a one-channel texture. No later step reads it.
bool radial(ShaderCache& cache, const Texture2D& target);

/// Highlight weight of each pixel of `small` into a one-channel float texture.
bool ratio(ShaderCache& cache, const Texture2D& small, const LookValues& look, const Texture2D& target);

/// What the convolution draws from. Every texture but the kernel has the target's size.
struct ConvolutionTextures {
    Texture2D small, kernel, ratio;
    Texture2D radius;  // empty for the form with a constant radius
};

/// The convolution with a kernel strip, shared between OpenGL and the processor: both claim tiles from one
/// counter. `processor` describes the same picture for the processor's side, and says all that the shader is
/// told: without a radius plane the radius is constant, with a spin plane the kernels spin. `cpuOnly` leaves
/// every tile to the processor, which is the faster way where OpenGL itself runs on it.
/// A strip of the wrong size leaves every tile to OpenGL. Where the chore gets no thread, the calling thread
/// does all the work, with a line in the log.
bool convolve(ShaderCache& cache, const ConvolutionTextures& textures, const ConvolutionSource& processor,
              bool cpuOnly, const Texture2D& target);

/// How the free shape bends over the field; 0 leaves it alone.
struct FreeShape {
    float corrosion = 0.0f, radial = 0.0f, swirly = 0.0f, curvature = 0.0f;
};

/// The convolution with a free shape of 300 by 300. OpenGL alone draws it.
bool convolveFree(ShaderCache& cache, const ConvolutionTextures& textures, const LookValues& look,
                  int maximumRadius, const FreeShape& shape, const Texture2D& target);

/// `source` into a target of the same size, plainly or smoothed between the colours' edges.
bool copy(ShaderCache& cache, const Texture2D& source, const Texture2D& target);
bool smoothCopy(ShaderCache& cache, const Texture2D& source, const Texture2D& target);

/// What the composition draws from.
struct CompositionTextures {
    Texture2D soft, noise, source;
    Texture2D radius;  // blur radii in pixels of the photograph
    Texture2D kernel;  // the strip, or empty
    Texture2D grain;   // of makeGrainTexture
};

/// The strengths of a photograph's grain.
Texture2D makeGrainTexture(const GrainMap& map);

/// The photograph, its small blurs and the soft picture by the radius, with the photograph's grain.
/// `dispersion` is a share of the radius, `scaleRatio` the photograph's pixels across a working pixel.
bool compose(ShaderCache& cache, const CompositionTextures& textures, float dispersion, float scaleRatio,
             float smallBlurRadius, const Texture2D& target);

/// Blends the composed picture over the photograph, which keeps the share of the hair mask.
/// Both must be of one size.
bool composeHair(ShaderCache& cache, const Texture2D& composed, const Texture2D& hair,
                 const Texture2D& photograph);

/// What the lookup stage draws from.
struct LutTextures {
    Texture2D source, noise, background, global, bodyMask, vignette;
};

/// Colour tables at strengths 0..1, vignette and dither.
bool applyLuts(ShaderCache& cache, const LutTextures& textures, float ratioBackground, float ratioGlobal,
               const Texture2D& target);

/// The scene's noise texture, filled from rand().
Texture2D makeNoiseTexture();

}  // namespace zellab::Bokeh
