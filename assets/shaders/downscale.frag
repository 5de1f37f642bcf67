// Shrinks the photograph to the working picture: each pixel is the mean of the block of source pixels around
// its place. Colours 0..1; alpha is set to 1.

in vec2 textureCoordinate;
layout(location = 0) out vec4 fragColor;

uniform sampler2D src;           // the photograph, linear
uniform vec2 steps;              // block size, source pixels
uniform float inv_steps_square;  // 1 / (steps.x * steps.y)
uniform vec2 reso;               // size of a source pixel in texture coordinates

void main() {
    vec2 first = textureCoordinate - 0.5 * (steps - 1.0) * reso;
    vec3 sum = vec3(0.0);
    for (float y = 0.0; y < steps.y; y += 1.0)
        for (float x = 0.0; x < steps.x; x += 1.0) sum += texture(src, first + vec2(x, y) * reso).rgb;
    fragColor = vec4(sum * inv_steps_square, 1.0);
}
