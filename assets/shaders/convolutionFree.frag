// The bokeh convolution with a free shape: as the one with a radius a pixel, but its kernel is one square
// picture that four parameters bend over the field. At 0 each of them leaves the shape alone:
//   corrosion  eats the shape from its dim parts inwards; 1 leaves its brightest points
//   radial     narrows the shape along the way to the centre, at the corner by this share
//   swirly     turns the shape with the direction from the centre; 1 keeps the same side toward it
//   curvature  lets the reach of a shape grow toward the corner by this share
// Colours 0..1, distances in working pixels.

layout(location = 0) out vec4 fragColor;

uniform sampler2D tex_src;           // the working picture
uniform sampler2D tex_bokeh;         // the shape, 300 by 300
uniform sampler2D tex_bokeh_ratio;   // highlight weights
uniform sampler2D tex_bokeh_radius;  // radii in steps of 1 / 255
uniform float max_radius;            // how far a pixel looks at most
uniform vec2 reso;                   // size of a working pixel in texture coordinates
uniform float intensity;             // with vivid: the averaged colour's lift
uniform float vivid;
uniform float corrosion;
uniform float radial;
uniform float swirly;
uniform float curvature;

const float kShapeSide = 300.0;
const float kLargestRadius = 30.0;
const float kMostNarrow = 0.95;  // a shape keeps a twentieth of its width

// What the four parameters make of a neighbour's place: a rotation, a stretch along it, and a reach.
struct Bend {
    vec2 direction;  // from the picture's centre
    vec2 turn;       // cosine and sine
    float stretch;
    float reach;
};

Bend bendAt(vec2 position) {
    vec2 size = 1.0 / reso, place = 2.0 * position - size;
    float way = length(place) / length(size);
    vec2 direction = way > 0.0 ? normalize(place) : vec2(1.0, 0.0);
    float angle = swirly * atan(direction.y, direction.x);
    return Bend(direction, vec2(cos(angle), sin(angle)), 1.0 / (1.0 - min(radial * way, kMostNarrow)),
                1.0 + curvature * way * way);
}

// Shape weight 0..1 at `place`, -1..1 from the shape's middle to its sides.
float shapeWeight(vec2 place, Bend bend) {
    float along = dot(place, bend.direction);
    place += bend.direction * along * (bend.stretch - 1.0);
    place = vec2(place.x * bend.turn.x + place.y * bend.turn.y, place.y * bend.turn.x - place.x * bend.turn.y);
    if (max(abs(place.x), abs(place.y)) > 1.0) return 0.0;
    vec2 cell = floor((0.5 * place + 0.5) * (kShapeSide - 1.0) + 0.5);
    float weight = texture(tex_bokeh, (cell + 0.5) / kShapeSide).r;
    return max(weight - corrosion, 0.0) / max(1.0 - corrosion, 1.0 / 255.0);
}

void main() {
    vec2 here = gl_FragCoord.xy, size = floor(1.0 / reso + 0.5);
    float seen = min(floor(texture(tex_bokeh_radius, here * reso).r * 255.0 + 0.5), min(max_radius, kLargestRadius));
    vec2 low = max(vec2(-seen), 0.5 - here), high = min(vec2(seen), size - 0.5 - here);
    vec4 sum = vec4(0.0);
    for (float y = low.y; y <= high.y; y += 1.0)
        for (float x = low.x; x <= high.x; x += 1.0) {
            vec2 offset = vec2(x, y), position = here + offset, coordinate = position * reso;
            float reach = floor(texture(tex_bokeh_radius, coordinate).r * 255.0 + 0.5);
            Bend bend = bendAt(position);
            reach = min(reach * bend.reach, kLargestRadius);
            if (max(abs(x), abs(y)) > reach) continue;
            float weight = reach < 0.5 ? 1.0 : shapeWeight(-offset / reach, bend);
            weight *= texture(tex_bokeh_ratio, coordinate).r;
            sum += vec4(texture(tex_src, coordinate).rgb, 1.0) * weight;
        }
    vec3 color = sum.a > 0.0 ? sum.rgb / sum.a : texture(tex_src, here * reso).rgb;
    if (vivid > 0.0 && sum.a > 0.0) {
        float f = intensity * vivid * 0.3 + 1.0;
        color = (1.0 - f) * color + dot(color, vec3(0.2125, 0.7154, 0.0721)) * f;
    }
    fragColor = vec4(color, 1.0);
}
