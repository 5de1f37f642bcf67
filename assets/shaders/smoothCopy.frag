// The blurred working picture, smoothed where it will be enlarged so much that single working pixels would
// show: a 3 by 3 binomial whose neighbours count less the more their colour differs, so that the edge of a
// sharp subject stays where it is.

in vec2 textureCoordinate;
layout(location = 0) out vec4 fragColor;

uniform sampler2D tex_src;
uniform vec2 reso;  // size of a working pixel in texture coordinates

// Colour distance (0..1.7) at which a neighbour counts half: above the kernels' own grain, below any outline.
const float kHalfDistance = 0.08;

void main() {
    vec4 middle = texture(tex_src, textureCoordinate);
    vec4 sum = vec4(0.0);
    for (int y = -1; y <= 1; ++y)
        for (int x = -1; x <= 1; ++x) {
            vec3 color = texture(tex_src, textureCoordinate + vec2(x, y) * reso).rgb;
            vec3 apart = (color - middle.rgb) / kHalfDistance;
            float binomial = float((2 - abs(x)) * (2 - abs(y)));
            sum += vec4(color, 1.0) * binomial / (1.0 + dot(apart, apart));
        }
    fragColor = vec4(sum.rgb / sum.a, middle.a);
}
