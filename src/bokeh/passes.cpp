#include "bokeh/passes.h"

#include <algorithm>
#include <cmath>

#include "bokeh/passDraw.h"
#include "bokeh/passTables.h"

namespace zellab::Bokeh {

bool downscale(ShaderCache& cache, const Texture2D& source, const Texture2D& small) {
    ShaderProgram program = cache.program(kDownscale.key);
    if (!program.isValid() || source.isEmpty() || small.isEmpty()) return false;
    const float stepsX = std::ceil(static_cast<float>(source.width()) / static_cast<float>(small.width()));
    const float stepsY = std::ceil(static_cast<float>(source.height()) / static_cast<float>(small.height()));
    setPixelSize(program, "reso", source)
        .setVec2("steps", stepsX, stepsY)
        .setFloat("inv_steps_square", 1.0f / (stepsX * stepsY))
        .setTexture("src", linear(source), 0);
    return drawOver(small, program);
}

bool radial(ShaderCache& cache, const Texture2D& target) {
    ShaderProgram program = cache.program(kRadial.key);
    if (!program.isValid() || target.isEmpty()) return false;
    const auto w = static_cast<float>(target.width()), h = static_cast<float>(target.height());
    const float diagonal = std::sqrt(w * w + h * h);
    program.setVec2("reso", w / diagonal, h / diagonal);
    return drawOver(target, program);
}

bool ratio(ShaderCache& cache, const Texture2D& small, const LookValues& look, const Texture2D& target) {
    ShaderProgram program = cache.program(kRatio.key);
    if (!program.isValid()) return false;
    const std::vector<float> table = ratioTable(look);
    program.setTexture("tex_src", nearest(small), 0)
        .setTexture("tex_ratio", Texture2D(256, 256, kOrderRed, kTypeFloat, table.data()), 1);
    return drawOver(target, program);
}

bool copy(ShaderCache& cache, const Texture2D& source, const Texture2D& target) {
    ShaderProgram program = cache.program(kCopy.key);
    if (!program.isValid() || !sameSize(source, target)) return false;
    program.setTexture("tex_src", nearest(source), 0);
    return drawOver(target, program);
}

bool smoothCopy(ShaderCache& cache, const Texture2D& source, const Texture2D& target) {
    ShaderProgram program = cache.program(kSmoothCopy.key);
    if (!program.isValid() || !sameSize(source, target)) return false;
    setPixelSize(program, "reso", target).setTexture("tex_src", nearest(source), 0);
    return drawOver(target, program);
}

bool compose(ShaderCache& cache, const CompositionTextures& textures, float dispersion, float scaleRatio,
             float smallBlurRadius, const Texture2D& target) {
    // The size of a photograph of 12 megapixels that the small blur's distances are made for.
    constexpr float kUsualShortSide = 3024.0f;
    constexpr int kRadiusTaps = 2, kRadiusTapStep = 3;
    constexpr float kRadiusColourThreshold = 0.4f;
    // Photograph pixels that one repetition of the noise covers.
    constexpr float kNoiseAcross = 200.0f, kNoiseDown = 125.0f;

    ShaderProgram program = cache.program(kComposition.key);
    if (!program.isValid() || target.isEmpty() || textures.radius.isEmpty()) return false;
    const auto w = static_cast<float>(target.width()), h = static_cast<float>(target.height());
    setPixelSize(program, "reso", target);
    setPixelSize(program, "radius_reso", textures.radius)
        .setVec2("noise_scale", w / kNoiseAcross, h / kNoiseDown)
        .setFloat("RTH", smallBlurRadius)
        .setInt("bf_radius", kRadiusTaps)
        .setInt("bf_step", kRadiusTapStep)
        .setFloat("bf_threshold", kRadiusColourThreshold)
        .setFloat("dispersion", dispersion)
        .setFloat("ratio", std::min(w, h) / kUsualShortSide)
        .setFloat("scale_ratio", scaleRatio)
        .setFloatArray("bokeh_data", static_cast<int>(kBokehData.size()), kBokehData.data())
        .setTexture("tex_src", mirrored(linear(textures.soft)), 0)
        .setTexture("tex_noise", mirrored(textures.noise), 1)
        .setTexture("tex_origin", textures.source, 2)
        .setTexture("tex_radius", textures.radius, 3)
        .setTexture("tex_bokeh", textures.kernel, 4)
        .setTexture("tex_grain", linear(textures.grain), 5);
    if (!textures.grain.isEmpty()) {
        constexpr auto kCell = static_cast<float>(GrainMap::kCellSide);
        program.setVec2("grain_reso", 1.0f / (kCell * static_cast<float>(textures.grain.width())),
                        1.0f / (kCell * static_cast<float>(textures.grain.height())));
    }
    return drawOver(target, program);
}

bool composeHair(ShaderCache& cache, const Texture2D& composed, const Texture2D& hair,
                 const Texture2D& photograph) {
    ShaderProgram program = cache.program(kHair.key);
    if (!program.isValid() || photograph.isEmpty() || !sameSize(composed, photograph)) return false;
    setPixelSize(program, "reso", photograph)
        .setTexture("tex_src", composed, 0)
        .setTexture("tex_hair", linear(hair), 1)
        .setBlend(GL_ONE_MINUS_SRC_ALPHA, GL_SRC_ALPHA, GL_ONE, GL_ONE);
    return drawOver(photograph, program);
}

bool applyLuts(ShaderCache& cache, const LutTextures& textures, float ratioBackground, float ratioGlobal,
               const Texture2D& target) {
    ShaderProgram program = cache.program(kLut.key);
    if (!program.isValid()) return false;
    program.setTexture("tex_src", textures.source, 0)
        .setTexture("tex_noise", textures.noise, 1)
        .setTexture("tex_lut_background", textures.background, 2)
        .setTexture("tex_lut_global", textures.global, 3)
        .setTexture("tex_body_mask", textures.bodyMask, 4)
        .setTexture("tex_vignette", textures.vignette, 5)
        .setFloat("ratio_background", ratioBackground)
        .setFloat("ratio_global", ratioGlobal);
    return drawOver(target, program);
}

Texture2D makeGrainTexture(const GrainMap& map) {
    return {map.across, map.down, kOrderRgba, kTypeFloat, map.strengths.data()};
}

Texture2D makeNoiseTexture() {
    return {kNoiseSide, kNoiseSide, kOrderRgba, kTypeByte, noisePixels().data()};
}

}  // namespace zellab::Bokeh
