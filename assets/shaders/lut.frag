// Colour lookup, vignette and dither. Tables are 512 by 512: 8 by 8 tiles of 64 by 64, one for each blue
// level, red across and green down. Colours 0..1.

in vec2 textureCoordinate;
layout(location = 0) out vec4 fragColor;

uniform sampler2D tex_src;
uniform sampler2D tex_noise;           // 256 by 256 uniform noise
uniform sampler2D tex_lut_background;  // for what is not the subject, linear
uniform sampler2D tex_lut_global;      // for everything after that, linear
uniform sampler2D tex_body_mask;       // the subject, 0..1
uniform sampler2D tex_vignette;        // brightness, 128 / 255 is neutral
uniform float ratio_background;        // strength of the first table
uniform float ratio_global;            // strength of the second

vec3 tileColor(sampler2D lut, vec3 color, float level) {
    vec2 tile = vec2(mod(level, 8.0), floor(level / 8.0));
    return texture(lut, (tile * 64.0 + color.rg * 63.0 + 0.5) / 512.0).rgb;
}

vec3 lookUp(sampler2D lut, vec3 color) {
    float blue = color.b * 63.0, level = min(floor(blue), 62.0);
    return mix(tileColor(lut, color, level), tileColor(lut, color, level + 1.0), blue - level);
}

void main() {
    vec4 source = texture(tex_src, textureCoordinate);
    vec3 color = source.rgb;
    float background = ratio_background * (1.0 - texture(tex_body_mask, textureCoordinate).r);
    color = mix(color, lookUp(tex_lut_background, color), background);
    color = mix(color, lookUp(tex_lut_global, color), ratio_global);
    color *= texture(tex_vignette, textureCoordinate).r * 255.0 / 128.0;
    // A little less than half a level to each side: slopes lose their steps, plain levels stay.
    vec3 dither = texture(tex_noise, gl_FragCoord.xy / 256.0).rgb - 0.5;
    fragColor = vec4(color + dither * 0.9 / 255.0, source.a);
}
