#include "place.h"

#include <algorithm>

#include "portrait/noiseField.h"
#include "solidMath.h"

namespace zeldepth {

using namespace zel::drawing;

namespace {

/// A ray in the solid's own axes.
struct LocalRay {
    Vec3 origin, direction;
};

LocalRay localRay(const Solid& solid, Vec3 origin, Vec3 direction) {
    return {turnedY(origin - solid.centre, solid.sine, solid.cosine),
            turnedY(direction, solid.sine, solid.cosine)};
}

/// Entry and exit along a ray, with the side by which each passes (0 x, 1 y, 2 z, 3 round).
struct Crossing {
    float enter = -kNever, leave = kNever;
    int side = 0, leaveSide = 0;
};

void cutSlab(Crossing& c, float origin, float direction, float half, int side) {
    if (std::fabs(direction) < 1e-7f) {
        if (std::fabs(origin) > half) c.leave = -kNever;
        return;
    }
    float a = (-half - origin) / direction, b = (half - origin) / direction;
    if (a > b) std::swap(a, b);
    if (a > c.enter) c.enter = a, c.side = side;
    if (b < c.leave) c.leave = b, c.leaveSide = side;
}

void cutRound(Crossing& c, float a, float b, float k) {
    const float root = b * b - a * k;
    if (root < 0 || a < 1e-12f) {
        if (root < 0 || k > 0) c.leave = -kNever;
        return;
    }
    const float s = std::sqrt(root), enter = (-b - s) / a, leave = (-b + s) / a;
    if (enter > c.enter) c.enter = enter, c.side = 3;
    if (leave < c.leave) c.leave = leave, c.leaveSide = 3;
}

Crossing crossing(const Solid& solid, const LocalRay& ray) {
    Crossing c;
    const Vec3 o = ray.origin, d = ray.direction, h = solid.half;
    if (solid.kind == Solid::Kind::box) {
        cutSlab(c, o.x, d.x, h.x, 0);
        cutSlab(c, o.y, d.y, h.y, 1);
        cutSlab(c, o.z, d.z, h.z, 2);
        return c;
    }
    const Vec3 os{o.x / h.x, o.y / h.y, o.z / h.z}, ds{d.x / h.x, d.y / h.y, d.z / h.z};
    if (solid.kind == Solid::Kind::ellipsoid) {
        cutRound(c, dot(ds, ds), dot(os, ds), dot(os, os) - 1);
        return c;
    }
    cutRound(c, ds.x * ds.x + ds.z * ds.z, os.x * ds.x + os.z * ds.z, os.x * os.x + os.z * os.z - 1);
    cutSlab(c, o.y, d.y, h.y, 1);
    return c;
}

/// Pattern coordinates and normal of a surface point in the solid's axes.
struct Surface {
    float u = 0, v = 0;
    Vec3 normal;
};

Surface surfaceAt(const Solid& solid, Vec3 p, int side) {
    if (side == 0) return {p.z, p.y, {p.x > 0 ? 1.0f : -1.0f, 0, 0}};
    if (side == 1) return {p.x, p.z, {0, p.y > 0 ? 1.0f : -1.0f, 0}};
    if (side == 2) return {p.x, p.y, {0, 0, p.z > 0 ? 1.0f : -1.0f}};
    const Vec3 h = solid.half;
    const bool ball = solid.kind == Solid::Kind::ellipsoid;
    const Vec3 normal = normalized({p.x / square(h.x), ball ? p.y / square(h.y) : 0.0f, p.z / square(h.z)});
    return {angleOf(p.x, -p.z) * std::max(h.x, h.z), p.y, normal};
}

bool hole(const Solid& solid, Vec3 p) {
    if (solid.leafy <= 0) return false;
    const float size = 6 / std::max(solid.half.x, 0.1f);
    const float leaf = cloudNoise((p.x + 0.7f * p.z) * size, (p.y + 0.4f * p.z) * size, 3, solid.seed);
    return 0.5f + 0.9f * leaf < solid.leafy;
}

}  // namespace

Meeting Place::meet(Vec3 origin, Vec3 direction) const {
    Meeting found;
    constexpr float kStart = 1e-3f;
    for (const Solid& solid : m_solids) {
        const LocalRay ray = localRay(solid, origin, direction);
        const Crossing c = crossing(solid, ray);
        if (c.leave < std::max(c.enter, kStart)) continue;
        const std::pair<float, int> ways[] = {{c.enter, c.side}, {c.leave, c.leaveSide}};
        for (const auto& [along, side] : ways) {
            if (along < kStart || along >= found.along) continue;
            const Vec3 p = ray.origin + ray.direction * along;
            if (hole(solid, p)) continue;
            Surface s = surfaceAt(solid, p, side);
            if (dot(s.normal, ray.direction) > 0) s.normal = s.normal * -1;
            const Colour colour = solid.pattern.at(s.u, s.v);
            found = {along, turnedY(s.normal, -solid.sine, solid.cosine), colour, solid.glow};
            break;
        }
    }
    if (m_hasGround && direction.y > 1e-4f) {
        const float along = (m_ground - origin.y) / direction.y;
        if (along > kStart && along < found.along && along < 900) {
            const Vec3 p = origin + direction * along;
            found = {along, {0, -1, 0}, m_groundPattern.at(p.x, p.z), 0};
        }
    }
    return found;
}

bool Place::open(Vec3 from, Vec3 towards) const {
    const float reach = m_inside ? lengthOf(towards) : kNever;
    const Vec3 direction = m_inside ? towards * (1 / std::max(reach, 1e-4f)) : towards;
    return std::none_of(m_solids.begin(), m_solids.end(), [&](const Solid& solid) {
        if (solid.glow > 0) return false;
        const LocalRay ray = localRay(solid, from, direction);
        const Crossing c = crossing(solid, ray);
        const float along = c.enter > 0.01f ? c.enter : c.leave;
        if (c.leave < std::max(c.enter, 0.01f) || along < 0.01f || along > reach - 0.05f) return false;
        return !hole(solid, ray.origin + ray.direction * along);
    });
}

Colour Place::skyAt(Vec3 direction) const {
    const float up = clamp01(-direction.y * 1.6f);
    const float bank = cloudNoise(direction.x * 2.5f + 7, direction.y * 7, 4, m_seed);
    return mix(mix(m_skyLow, m_skyTop, up), m_cloud, m_clouds * smoothStep(-0.1f, 0.4f, bank));
}

Colour Place::colourSeen(Vec3 origin, Vec3 direction, float& along) const {
    const Meeting met = meet(origin, direction);
    along = met.along;
    if (met.along >= kNever) return skyAt(direction);
    const Vec3 p = origin + direction * met.along;
    const Vec3 towards = m_inside ? m_lampTowards - p : m_lampTowards;
    const float facing = dot(met.normal, normalized(towards));
    Colour light = m_ambient * (0.75f - 0.25f * met.normal.y);
    if (facing > 0 && open(p + met.normal * 0.01f, towards)) {
        const float fall = m_inside ? 1 / (0.6f + 0.12f * dot(towards, towards)) : 1.0f;
        light = light + m_lamp * (facing * fall);
    }
    const Colour colour = met.colour * light + met.colour * met.glow;
    return mix(skyAt({direction.x, 0, direction.z}), colour, expOf(-m_haze * met.along));
}

}  // namespace zeldepth
