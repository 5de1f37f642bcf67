// Puts the sharp hair back: blending takes the finished picture by one minus this alpha and keeps the
// photograph, which is the target, by this alpha.
//
// The mask comes at half size, where a single hair is a faint line. Its difference from the mean around it is
// added, which strengthens lines and clears the space between them; a base is taken off, so that no sharp
// background stands around the head like a ring. Mask 0 gives exactly 0, mask 1 everywhere exactly 1.

in vec2 textureCoordinate;
layout(location = 0) out vec4 fragColor;

uniform sampler2D tex_src;   // the finished picture
uniform sampler2D tex_hair;  // hair mask 0..1, linear
uniform vec2 reso;           // size of a pixel in texture coordinates

const float kReach = 4.0;  // pixels: two of the mask, a hair's width and the space beside it
const float kLines = 1.5;  // strength of what stands out
const float kBase = 0.06;

void main() {
    float middle = texture(tex_hair, textureCoordinate).r, around = 0.0;
    for (int y = -1; y <= 1; ++y)
        for (int x = -1; x <= 1; ++x) around += texture(tex_hair, textureCoordinate + vec2(x, y) * kReach * reso).r;
    float hair = middle + kLines * (middle - around / 9.0) * middle;
    fragColor = vec4(texture(tex_src, textureCoordinate).rgb, clamp((hair - kBase) / (1.0 - 2.0 * kBase), 0.0, 1.0));
}
