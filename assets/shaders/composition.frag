// The final picture at full size: the photograph where it is in focus, a small blur of the photograph itself
// where it is nearly so, the enlarged working picture elsewhere, with the photograph's own grain put back.
// Colours 0..1; radii and distances in pixels of the photograph.
//
//   radius    0          RTH / 2 ... RTH * 1.5                  255
//             photograph | small blur, fading into | working picture
//
// Three things keep the outline of a sharp subject clean. The radius at a pixel is taken from pixels of its
// own colour, so that it steps where the picture does and not where the coarse plane does. The working picture
// is enlarged from those of its pixels that are blurred, so that no colour of the subject leaks out. And the
// small blur takes no pixel that does not itself reach so far.
//
// What a pixel does not need it skips by a loop of no turns, not by a branch: rasterisers in software walk
// through both sides of a branch, and out of a loop.

in vec2 textureCoordinate;
layout(location = 0) out vec4 fragColor;

uniform sampler2D tex_src;     // the blurred working picture, linear, mirrored
uniform sampler2D tex_noise;   // 256 by 256 uniform noise, mirrored
uniform sampler2D tex_origin;  // the photograph
uniform sampler2D tex_radius;  // blur radii in steps of 1 / 255, at the working picture's size
uniform sampler2D tex_grain;   // strength of the photograph's grain: of each colour about its brightness, and of
                               // the brightness; linear
uniform vec2 grain_reso;       // size of a pixel in its texture coordinates
uniform vec2 reso;             // size of a pixel in texture coordinates
uniform vec2 radius_reso;      // the same of a working pixel
uniform vec2 noise_scale;      // repetitions of the noise over the picture
uniform float RTH;             // radius up to which the small blur serves
uniform int bf_radius;         // taps to each side when the radius is read
uniform int bf_step;           // distance of those taps
uniform float bf_threshold;    // colour distance from which on a tap does not count
uniform float dispersion;      // how far red and blue part, as a share of the radius
uniform float ratio;           // the picture's size over that of a 12 megapixel photograph
uniform float scale_ratio;     // pixels across a working pixel
uniform float bokeh_data[165]; // kernels of radius 0..4 for the small blur, one after the other

const float kKernelRadii = 4.0;

float radiusAt(vec2 coordinate) {
    return texture(tex_radius, coordinate).r * 255.0;
}

// The blur radius at this pixel: the mean over those around it that look alike.
float edgeAwareRadius(vec3 color) {
    vec2 spacing = reso * max(float(bf_step) * ratio, scale_ratio);
    vec2 first = 0.5 * reso, last = 1.0 - first;
    // Where the plane is level the colours need not be asked.
    float middle = radiusAt(textureCoordinate), apart = 0.0;
    for (int i = 0; i < 9; ++i) {
        vec2 offset = (vec2(i % 3, i / 3) - 1.0) * float(bf_radius);
        apart = max(apart, abs(radiusAt(clamp(textureCoordinate + offset * spacing, first, last)) - middle));
    }
    int reach = apart < 0.5 ? -1 : bf_radius;
    vec2 sum = vec2(0.0);
    for (int y = -reach; y <= reach; ++y)
        for (int x = -reach; x <= reach; ++x) {
            vec2 coordinate = clamp(textureCoordinate + vec2(x, y) * spacing, first, last);
            float unlike = length(texture(tex_origin, coordinate).rgb - color) / bf_threshold;
            float alike = max(1.0 - unlike * unlike, 0.0);
            float near = 1.0 / (1.0 + float(x * x + y * y));
            sum += vec2(radiusAt(coordinate), 1.0) * alike * alike * near;
        }
    return sum.y > 0.0 ? sum.x / sum.y : middle;
}

// How much a working pixel of that radius may stand for one of this: nothing if it is much sharper.
float blurredAlike(float theirs, float radius) {
    return smoothstep(0.25, 0.75, theirs / max(radius, 1.0));
}

// The working picture around `place` (in working pixels), from those of its pixels that are blurred alike.
// The fourth value is their weight.
vec4 softSum(vec2 corner, vec2 part, int reach, float radius) {
    vec4 sum = vec4(0.0);
    for (int y = 1 - reach; y <= reach; ++y)
        for (int x = 1 - reach; x <= reach; ++x) {
            vec2 texel = (corner + vec2(x, y) + 0.5) * radius_reso;
            vec2 share = max(1.0 - abs(vec2(x, y) - part) / float(reach), 0.0);
            float weight = share.x * share.y * blurredAlike(radiusAt(texel), radius);
            sum += vec4(texture(tex_src, texel).rgb, 1.0) * weight;
        }
    return sum;
}

// The working picture between its pixels. Beside the outline of a subject that the coarse plane draws too
// large, the nearest pixels are all the subject's; farther ones serve then.
vec3 softColor(vec2 coordinate, float radius, int reach) {
    vec2 place = coordinate / radius_reso - 0.5, corner = floor(place), part = place - corner;
    vec4 sum = softSum(corner, part, reach, radius);
    sum += 0.02 * softSum(corner, part, sum.a < 0.25 ? 4 * reach : 0, radius);
    return sum.a > 1e-4 ? sum.rgb / sum.a : texture(tex_src, coordinate).rgb;
}

// Red and blue part along the way from the centre. Nothing is read unless it is wanted.
vec3 dispersedSoftColor(float radius, bool wanted) {
    vec2 shift = (2.0 * textureCoordinate - 1.0) * dispersion * radius * reso;
    vec3 color = vec3(0.0);
    int first = wanted ? 0 : 3, last = dispersion > 0.0 ? 2 : 0;
    for (int part = first; part <= last; ++part) {
        vec2 place = textureCoordinate + (part == 0 ? 0.0 : part == 1 ? 1.0 : -1.0) * shift;
        vec3 here = softColor(place, radius, wanted ? 1 : 0);
        color = part == 0 ? here : part == 1 ? vec3(here.r, color.gb) : vec3(color.rg, here.b);
    }
    return color;
}

// The photograph under a small kernel of `reach` 0..4. The fourth value is the share of a white noise's
// variance that is left after it. All 0 unless it is wanted.
vec4 smallBlur(float reach, bool wanted) {
    float size = ceil(reach);
    int side = 2 * int(size) + 1;
    // Kernels of 1, 9, 25, ... values stand before this one.
    int first = int(size) * (2 * int(size) - 1) * (2 * int(size) + 1) / 3;
    float spacing = max(ratio, 1.0);
    vec4 sum = vec4(0.0);
    float squares = 0.0;
    int taps = wanted ? side * side : 0;
    for (int i = 0; i < taps; ++i) {
        vec2 offset = vec2(i % side, i / side) - size;
        float distance = max(abs(offset.x), abs(offset.y));
        vec2 coordinate = textureCoordinate - offset * spacing * reso;
        float theirs = min(0.5 * radiusAt(coordinate), kKernelRadii);
        // The outermost ring fades in with the radius, theirs as ours.
        float seen = clamp(reach - distance + 1.0, 0.0, 1.0) * clamp(theirs - distance + 1.0, 0.0, 1.0);
        float weight = bokeh_data[first + i] * (distance < 0.5 ? 1.0 : seen);
        sum += vec4(texture(tex_origin, coordinate).rgb, 1.0) * weight;
        squares += weight * weight;
    }
    return wanted ? vec4(sum.rgb / sum.a, squares / (sum.a * sum.a)) : vec4(0.0);
}

// Grain of unit strength: colours about the brightness, and the brightness. Each is the sum of two uniform
// deviates, which is bell-shaped enough.
vec4 grain() {
    const float kUnit = 2.4494897;  // square root of 6: the sum's deviation is its inverse
    // A place that lies between two texels but for rounding belongs to the second.
    vec2 place = textureCoordinate * noise_scale + vec2(1.0 / 50.0, 1.0 / 250.0) / 256.0;
    vec3 first = texture(tex_noise, place).rgb, second = texture(tex_noise, place.yx + 0.37).rgb;
    vec3 third = texture(tex_noise, place + 0.61).rgb;
    return vec4(first + second.gbr, third.r + third.g) * kUnit - kUnit;
}

void main() {
    vec4 origin = texture(tex_origin, textureCoordinate);
    float radius = edgeAwareRadius(origin.rgb), threshold = RTH;
    bool blurred = radius > 0.0;
    float share = smoothstep(0.5 * threshold, 1.5 * threshold, radius);
    float reach = min(0.5 * radius, kKernelRadii);
    vec4 color = (1.0 - share) * smallBlur(reach, blurred && share < 1.0);
    color.rgb += share * dispersedSoftColor(radius, share > 0.0);
    vec4 strength = texture(tex_grain, gl_FragCoord.xy * grain_reso);
    vec4 noise = grain() * strength * sqrt(max(1.0 - color.a * (1.0 - share), 0.0));
    fragColor = blurred ? vec4(color.rgb + noise.rgb + noise.a, origin.a) : origin;
}
