// Highlight weight of each working pixel, 1 and up: how often its colour counts in the convolution. The
// table holds it by the largest colour of the pixel (row) and the smallest (column).

in vec2 textureCoordinate;
layout(location = 0) out vec4 fragColor;

uniform sampler2D tex_src;    // the working picture
uniform sampler2D tex_ratio;  // 256 by 256 weights

// The processor keeps weights as sixteenths in 16 bits. The same steps here let both paint the same picture.
const float kSixteenths = 16.0;
const float kLargestSixteenths = 65535.0;

void main() {
    vec3 color = texture(tex_src, textureCoordinate).rgb;
    float high = max(color.r, max(color.g, color.b));
    float low = min(color.r, min(color.g, color.b));
    vec2 cell = floor(vec2(low, high) * 255.0 + 0.5);
    float weight = texture(tex_ratio, (cell + 0.5) / 256.0).r;
    fragColor = vec4(min(floor(weight * kSixteenths + 0.5), kLargestSixteenths) / kSixteenths);
}
