#pragma once

#include <array>
#include <cstdint>

namespace zellab::Bokeh {

/// A pass's fragment shader: its key in the shader file and its text among the assets.
struct PassShader {
    std::uint32_t key;
    const char* file;
};

inline constexpr PassShader kDownscale{0x5F6E410Fu, "downscale.frag"};
inline constexpr PassShader kRadial{0x0D11B8E2u, "radial.frag"};
inline constexpr PassShader kRatio{0x944C8959u, "ratio.frag"};
inline constexpr PassShader kConvolution{0x1FA44EABu, "convolution.frag"};
inline constexpr PassShader kConvolutionConstant{0xBF9EE66Au, "convolutionConstant.frag"};
inline constexpr PassShader kConvolutionFree{0xD4F89D0Eu, "convolutionFree.frag"};
inline constexpr PassShader kCopy{0xD290BC63u, "copy.frag"};
inline constexpr PassShader kSmoothCopy{0x4979DCD4u, "smoothCopy.frag"};
inline constexpr PassShader kComposition{0x58AA37DFu, "composition.frag"};
inline constexpr PassShader kHair{0xC4D13139u, "hair.frag"};
inline constexpr PassShader kLut{0x18BB7DB4u, "lut.frag"};

/// All of them: what the shader file holds.
inline constexpr std::array kPassShaders{
    kDownscale,  kRadial,      kRatio, kConvolution, kConvolutionConstant, kConvolutionFree, kCopy,
    kSmoothCopy, kComposition, kHair,  kLut};

}  // namespace zellab::Bokeh
