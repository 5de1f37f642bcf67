// The bokeh convolution with one radius for the whole picture. Each working pixel averages the square around
// it; a neighbour counts what its kernel holds at this pixel's place times its highlight weight.
// It computes what the processor's tiles compute, step by step. Colours 0..1, distances in working pixels.

layout(location = 0) out vec4 fragColor;

uniform sampler2D tex_src;           // the working picture
uniform sampler2D tex_bokeh;         // the kernel strip: six frames from the picture's centre to its corner
uniform sampler2D tex_bokeh_ratio;   // highlight weights
uniform float radius;                // of every pixel, 0..30
uniform vec2 reso;                   // size of a working pixel in texture coordinates
uniform float intensity;             // with vivid: the averaged colour's lift
uniform float vivid;
uniform vec3 table[120];             // cosine, sine and frame of each spin record

const vec2 kStrip = vec2(1056.0, 176.0);
const float kFrames = 6.0;
const float kUsedShare = 0.6875;  // of a frame's side
const float kLargestRadius = 30.0;
const float kNudge = 1.0 / 1024.0;  // texels; places that are whole but for rounding belong to their own texel

// The record of a pixel (in working pixels, with its half): the direction from the centre in twentieths of a
// turn, then the sixth of the way to the corner.
int spinRecord(vec2 position) {
    vec2 size = floor(1.0 / reso + 0.5);
    vec2 place = 2.0 * position - size;
    vec2 side = abs(place);
    // Tangents of 9, 27, 45, 63 and 81 degrees.
    int quarter = int(side.y > 0.15838444 * side.x) + int(side.y > 0.50952545 * side.x) + int(side.y > side.x) +
                  int(side.y > 1.9626105 * side.x) + int(side.y > 6.3137515 * side.x);
    int sector = place.x < 0.0 ? 10 - quarter : quarter;
    if (place.y < 0.0) sector = (20 - sector) % 20;
    float way = dot(place, place) * 36.0 / dot(size, size);  // squared, in sixths
    int frame = int(way >= 1.0) + int(way >= 4.0) + int(way >= 9.0) + int(way >= 16.0) + int(way >= 25.0);
    return (20 - sector) % 20 * 6 + frame;
}

// Kernel weight 0..1 that a neighbour of the given radius, `offset` away and at `position`, gives this pixel.
float kernelWeight(float reach, vec2 offset, vec2 position, bool spins) {
    if (reach < 0.5) return 1.0 / 255.0;
    vec2 place = ((reach - offset) / (2.0 * reach) - 0.5) * kUsedShare;
    vec2 cell;
    if (spins) {
        vec3 turn = table[spinRecord(position)];
        cell = vec2((place.x * turn.x - place.y * turn.y + 0.5 + turn.z) / kFrames,
                    place.x * turn.y + place.y * turn.x + 0.5);
    } else {
        cell = vec2((place.x + 0.5) / kFrames, place.y + 0.5);
    }
    return texture(tex_bokeh, (floor(cell * kStrip + kNudge) + 0.5) / kStrip).r;
}

// Moves the average away from its grey if the look is vivid.
vec3 lifted(vec3 color) {
    if (vivid <= 0.0) return color;
    float f = intensity * vivid * 0.3 + 1.0;
    return (1.0 - f) * color + dot(color, vec3(0.2125, 0.7154, 0.0721)) * f;
}

void main() {
    vec2 here = gl_FragCoord.xy;
    vec2 size = floor(1.0 / reso + 0.5);
    bool spins = table[6].y != 0.0;  // the second rotation; without spin all are 0
    float reach = min(radius, kLargestRadius);
    vec2 low = max(vec2(-reach), 0.5 - here), high = min(vec2(reach), size - 0.5 - here);
    vec4 sum = vec4(0.0);
    for (float y = low.y; y <= high.y; y += 1.0)
        for (float x = low.x; x <= high.x; x += 1.0) {
            vec2 offset = vec2(x, y), position = here + offset, coordinate = position * reso;
            float weight =
                kernelWeight(reach, offset, position, spins) * texture(tex_bokeh_ratio, coordinate).r;
            sum += vec4(texture(tex_src, coordinate).rgb, 1.0) * weight;
        }
    vec3 average = sum.a > 0.0 ? lifted(sum.rgb / sum.a) : texture(tex_src, here * reso).rgb;
    fragColor = vec4(average, 1.0);
}
