#include "layer.h"
#include "person.h"
#include "solidMath.h"

namespace zeldepth {

using namespace zel::drawing;

namespace {

/// Lamp, sky and floor light.
struct Light {
    Vec3 towards;
    Colour lamp, sky, floor, rim;
    Vec3 rimTowards;
    float exposure = 1;

    explicit Light(RandomSource& random) {
        const float side = radians(random.range(-100, 100)), up = radians(random.range(-5, 70));
        towards = {sineOf(side) * cosineOf(up), -sineOf(up), -cosineOf(side) * cosineOf(up)};
        const float warm = random.range(-0.25f, 0.25f), hard = random.range(0.1f, 1.1f);
        lamp = Colour{1 + warm, 1, 1 - warm} * (1.3f * hard);
        const float cool = random.range(-0.15f, 0.15f), soft = random.range(0.25f, 0.8f);
        sky = Colour{1 - cool, 1, 1 + cool} * soft;
        floor = sky * random.range(0.3f, 0.9f);
        const float rimSide = random.chance(0.5f) ? 1.0f : -1.0f;
        rimTowards = normalized({rimSide, -0.3f, 0.8f});
        rim = Colour{1, 1, 1} * (random.chance(0.3f) ? random.range(0.2f, 1.5f) : 0.0f);
        exposure = exp2Of(random.range(-0.7f, 0.5f));
    }
};

/// The camera before the person, and how the person is framed.
struct Camera {
    struct Turn {
        float sine = 0, cosine = 1;
        static Turn by(float degrees) { return {sineOf(radians(degrees)), cosineOf(radians(degrees))}; }
    };

    Vec3 at;
    Vec2 middle;     // where the picture's middle looks, in the plane of the head
    float span = 1;  // metres from the picture's top to its bottom in that plane
    Turn pitch;

    explicit Camera(RandomSource& random) {
        const float kind = random.uniform();
        // Head and shoulders mostly; sometimes a face alone, a half or a whole length.
        const float bottom = kind < 0.15f   ? random.range(0.12f, 0.26f)
                             : kind < 0.65f ? random.range(0.26f, 0.55f)
                             : kind < 0.92f ? random.range(0.5f, 0.9f)
                                            : random.range(0.9f, 1.15f);
        const float above = random.range(-0.05f, 0.26f) * (0.4f + bottom);
        const float top = -0.15f - above;
        span = bottom - top;
        middle = {0.13f * random.bellShaped() * span, 0.5f * (top + bottom)};
        const float distance = span * random.range(1.4f, 3.2f) + 0.2f;
        at = {middle.x, middle.y, -distance};
        pitch = Turn::by(random.range(-9, 9));
    }

    struct Ray {
        Vec3 origin, direction;
    };
    Ray through(float column, float row) const {
        const float unit = span / static_cast<float>(kSide), half = 0.5f * static_cast<float>(kSide);
        const Vec3 towards{(column - half) * unit, (row - half) * unit, -at.z};
        Ray ray{{at.x, at.y, at.z}, normalized(towards)};
        ray.origin = turnedX(ray.origin, pitch.sine, pitch.cosine);
        ray.direction = turnedX(ray.direction, pitch.sine, pitch.cosine);
        return ray;
    }
    /// Size of a pixel at a metre's distance.
    float pixel() const { return span / static_cast<float>(kSide) / -at.z; }
};

struct Hit {
    float along = 0, cover = 0;
    Part part = Part::skin;
};

Hit march(const Person& person, const Camera::Ray& ray, float pixel) {
    constexpr int kSteps = 90;
    Hit hit;
    float closest = 1e3f, t = 0.05f;
    const float reach = lengthOf(ray.origin) + 2.2f;
    for (int i = 0; i < kSteps && t < reach; ++i) {
        const auto found = person.nearest(ray.origin + ray.direction * t);
        const float pixels = found.distance / (pixel * t);
        if (pixels < closest) {
            closest = pixels;
            hit = {t, 0, found.part};
        }
        if (pixels < 0.15f) break;
        t += std::max(0.85f * found.distance, 0.2f * pixel * t);
    }
    hit.cover = clamp01(1.15f - closest);
    return hit;
}

Vec3 normalAt(const Person& person, Vec3 p) {
    constexpr float kStep = 0.0025f;
    const auto d = [&](float x, float y, float z) {
        return person.nearest(p + Vec3{x, y, z} * kStep).distance;
    };
    const float a = d(1, -1, -1), b = d(-1, -1, 1), c = d(-1, 1, -1), e = d(1, 1, 1);
    return normalized({a - b - c + e, -a - b + c + e, -a + b - c + e});
}

/// Share of the lamp that reaches the point: 1 in the open.
float lampShare(const Person& person, Vec3 p, Vec3 towards) {
    float share = 1, t = 0.02f;
    for (int i = 0; i < 14 && t < 0.6f; ++i) {
        const float d = person.nearest(p + towards * t).distance;
        share = std::min(share, 9 * d / t);
        if (share < 0.02f) return 0;
        t += std::max(d, 0.012f);
    }
    return clamp01(share);
}

Colour shade(const Person& person, const Light& light, Vec3 p, Vec3 normal, Vec3 view, Part part) {
    const Colour albedo = person.colourAt(p, normal, part);
    const float open = clamp01(0.35f + person.nearest(p + normal * 0.05f).distance / 0.05f * 0.65f);
    const float facing = dot(normal, light.towards);
    const float lamp = facing > -0.2f ? clamp01((facing + 0.2f) / 1.2f) *
                                            lampShare(person, p + normal * 0.006f, light.towards)
                                      : 0.0f;
    const float up = 0.5f - 0.5f * normal.y;
    Colour sum = light.lamp * lamp + mix(light.floor, light.sky, up) * open;
    sum = sum + light.rim * square(clamp01(dot(normal, light.rimTowards)));
    const Vec3 middle = normalized(light.towards - view);
    const float shine = person.glossOf(part) * powerOf(clamp01(dot(normal, middle)), 24) * lamp;
    return (albedo * sum + light.lamp * shine) * light.exposure;
}

}  // namespace

Planes renderPerson(unsigned seed) {
    RandomSource random(seed, 1);
    const Person person(random);
    const Light light(random);
    const Camera camera(random);
    Planes planes(kPersonPlanes);
    const float headDistance = -turnedX(camera.at, camera.pitch.sine, camera.pitch.cosine).z;
    const Vec3 axis = turnedX({0, 0, 1}, camera.pitch.sine, camera.pitch.cosine);
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x) {
            const auto ray = camera.through(static_cast<float>(x) + 0.5f, static_cast<float>(y) + 0.5f);
            const Hit hit = march(person, ray, camera.pixel());
            if (hit.cover * 255 < 1) continue;
            const std::size_t i = static_cast<std::size_t>(y) * kSide + static_cast<std::size_t>(x);
            const Vec3 p = ray.origin + ray.direction * hit.along;
            const Vec3 normal = normalAt(person, p);
            planes.setColour(i, shade(person, light, p, normal, ray.direction, hit.part));
            const float nearness = kNearnessOfHead * headDistance / (hit.along * dot(ray.direction, axis));
            planes.plane(3)[i] = static_cast<unsigned char>(hit.cover * 255);
            planes.plane(4)[i] = static_cast<unsigned char>(std::min(255.0f, nearness));
            planes.plane(5)[i] = static_cast<unsigned char>(hit.part);
        }
    return planes;
}

}  // namespace zeldepth
