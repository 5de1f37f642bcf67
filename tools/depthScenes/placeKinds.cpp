#include "place.h"
#include "solidMath.h"

namespace zeldepth {

using namespace zel::drawing;

namespace {

Solid solidOf(Solid::Kind kind, Vec3 centre, Vec3 half, Pattern pattern, float yaw = 0) {
    Solid solid;
    solid.kind = kind;
    solid.centre = centre;
    solid.half = half;
    solid.pattern = pattern;
    solid.sine = sineOf(yaw);
    solid.cosine = cosineOf(yaw);
    return solid;
}

Pattern surfacePattern(RandomSource& random) {
    return random.chance(0.4f) ? Pattern::plain(quietColour(random)) : Pattern(random);
}

}  // namespace

Place::Place(RandomSource& random) : m_seed(static_cast<std::uint32_t>(random.below(1 << 24))) {
    m_view = random.range(0.4f, 1.1f);
    m_pitch = radians(random.range(-6, 6));
    m_ground = random.range(0.9f, 1.8f);
    m_lamp = Colour{random.range(0.85f, 1.2f), 1, random.range(0.75f, 1.15f)} * random.range(0.4f, 1.6f);
    m_ambient = Colour{random.range(0.85f, 1.1f), 1, random.range(0.9f, 1.2f)} * random.range(0.25f, 0.8f);
    const float side = random.range(-kPi, kPi), up = radians(random.range(15, 75));
    m_lampTowards = {sineOf(side) * cosineOf(up), -sineOf(up), cosineOf(side) * cosineOf(up)};
    m_skyTop =
        random.chance(0.6f) ? Colour{0.12f, 0.28f, 0.7f} * random.range(0.4f, 1.3f) : quietColour(random);
    m_skyLow = mix(m_skyTop, {0.9f, 0.9f, 0.9f}, random.range(0.3f, 1));
    m_cloud = Colour{1, 1, 1} * random.range(0.4f, 1.1f);
    m_clouds = random.range(0, 1);
    const float kind = random.uniform();
    if (kind < 0.30f)
        room(random);
    else if (kind < 0.46f)
        street(random);
    else if (kind < 0.62f)
        field(random);
    else if (kind < 0.70f)
        tableTop(random);
    else if (kind < 0.88f)
        wall(random);
    else
        heap(random);
}

void Place::addSolid(RandomSource& random, Vec3 centre, Vec3 half) {
    const auto kind = static_cast<Solid::Kind>(random.below(3));
    Solid solid = solidOf(kind, centre, half, surfacePattern(random), random.range(0, 3));
    if (random.chance(0.04f)) solid.glow = random.range(0.5f, 2);
    m_solids.push_back(solid);
}

void Place::addTree(RandomSource& random, float x, float z) {
    const float height = random.range(2, 7), crown = height * random.range(0.25f, 0.5f);
    const Colour bark = Colour{0.10f, 0.07f, 0.05f} * random.range(0.5f, 2);
    m_solids.push_back(solidOf(Solid::Kind::cylinder, {x, m_ground - 0.5f * height, z},
                               {0.03f * height, 0.5f * height, 0.03f * height}, Pattern::plain(bark)));
    const Colour green = Colour{0.08f, 0.16f, 0.03f} * random.range(0.5f, 2.5f);
    const Colour other = random.chance(0.25f) ? randomColour(random) : green * random.range(0.2f, 0.6f);
    for (int i = 0; i < 3; ++i) {
        const float wide = crown * random.range(0.5f, 0.9f);
        Solid leaves = solidOf(
            Solid::Kind::ellipsoid,
            {x + random.range(-0.5f, 0.5f) * crown, m_ground - height + random.range(-0.3f, 0.5f) * crown,
             z + random.range(-0.5f, 0.5f) * crown},
            {wide, wide * random.range(0.6f, 1.2f), wide},
            Pattern::cloudy(green, other, 0.12f * height * 0.25f, m_seed + 5u));
        leaves.leafy = random.range(0.2f, 0.55f);
        leaves.seed = static_cast<std::uint32_t>(random.below(1 << 20));
        m_solids.push_back(leaves);
    }
}

void Place::addShelf(RandomSource& random, Vec3 centre, Vec3 half, float yaw) {
    const Pattern wood = Pattern::plain(quietColour(random) * 0.6f);
    const int boards = 3 + random.below(4);
    const float sine = sineOf(yaw), cosine = cosineOf(yaw);
    const auto at = [&](float x, float y, float z) { return centre + turnedY({x, y, z}, -sine, cosine); };
    m_solids.push_back(solidOf(Solid::Kind::box, at(0, 0, half.z), {half.x, half.y, 0.02f}, wood, yaw));
    for (int i = 0; i <= boards; ++i) {
        const float y = half.y * (2 * static_cast<float>(i) / static_cast<float>(boards) - 1);
        m_solids.push_back(solidOf(Solid::Kind::box, at(0, y, 0), {half.x, 0.015f, half.z}, wood, yaw));
        if (i == 0) continue;
        const float room = 2 * half.y / static_cast<float>(boards);
        for (float x = -half.x; x < half.x - 0.06f && m_solids.size() < 90;) {
            const float wide = random.range(0.02f, 0.09f), tall = room * random.range(0.3f, 0.45f);
            if (random.chance(0.85f))
                m_solids.push_back(solidOf(Solid::Kind::box, at(x + wide, y - tall, 0.2f * half.z),
                                           {wide, tall, 0.7f * half.z}, surfacePattern(random), yaw));
            x += 2 * wide + (random.chance(0.2f) ? 0.1f : 0.004f);
        }
    }
}

void Place::room(RandomSource& random) {
    m_inside = true;
    const Vec3 half{random.range(1.5f, 4), random.range(1.1f, 1.6f), random.range(2, 5)};
    const float yaw = random.chance(0.5f) ? 0.0f : random.range(-0.8f, 0.8f);
    const Vec3 centre{random.range(-0.5f, 0.5f) * half.x, m_ground - half.y,
                      half.z - random.range(0.4f, 1.2f)};
    m_solids.push_back(solidOf(Solid::Kind::box, centre, half, surfacePattern(random), yaw));
    m_hasGround = true;
    m_ground -= 0.003f;
    m_groundPattern = surfacePattern(random);
    m_lampTowards =
        centre + Vec3{random.range(-0.7f, 0.7f) * half.x, -0.9f * half.y, random.range(-0.8f, 0.3f) * half.z};
    m_lamp = m_lamp * 1.6f;
    const float sine = sineOf(yaw), cosine = cosineOf(yaw);
    const auto inRoom = [&](float x, float y, float z) {
        return centre + turnedY({x * half.x, y * half.y, z * half.z}, -sine, cosine);
    };
    for (int i = random.below(5); i > 0; --i) {  // pictures, windows and doors on the far wall
        Solid panel =
            solidOf(Solid::Kind::box, inRoom(random.range(-0.9f, 0.9f), random.range(-0.6f, 0.3f), 0.99f),
                    {random.range(0.1f, 0.7f), random.range(0.1f, 0.7f), 0.03f}, Pattern(random), yaw);
        if (random.chance(0.35f)) panel.glow = random.range(0.5f, 2.5f);
        m_solids.push_back(panel);
    }
    if (random.chance(0.35f))
        addShelf(random, inRoom(random.range(-0.6f, 0.6f), 0.1f, 0.93f),
                 {random.range(0.4f, 1.2f), half.y * 0.85f, 0.15f}, yaw);
    for (int i = random.below(7); i > 0; --i) {
        const Vec3 size{random.range(0.1f, 0.7f), random.range(0.1f, 0.7f), random.range(0.1f, 0.5f)};
        Vec3 at = inRoom(random.range(-0.9f, 0.9f), 0, random.range(-0.2f, 0.9f));
        at.y = m_ground - size.y;
        addSolid(random, at, size);
    }
}

void Place::street(RandomSource& random) {
    m_hasGround = true;
    m_groundPattern = surfacePattern(random);
    m_haze = random.range(0, 0.01f);
    const float yaw = random.range(-0.5f, 0.5f), half = random.range(2.5f, 8);
    const float sine = sineOf(yaw), cosine = cosineOf(yaw);
    for (const float side : {-1.0f, 1.0f})
        for (float along = 2; along < 60;) {
            const float length = random.range(2, 7), height = random.range(2, 9), deep = random.range(2, 4);
            const Vec3 at = turnedY({side * (half + deep), 0, along + length}, -sine, cosine);
            if (random.chance(0.85f))
                m_solids.push_back(
                    solidOf(Solid::Kind::box, {at.x, m_ground - height, at.z}, {deep, height, length},
                            random.chance(0.7f) ? Pattern::windows(random) : surfacePattern(random), yaw));
            along += 2 * length + random.range(0, 3);
        }
    for (int i = random.below(8); i > 0; --i) {  // cars, posts, boxes
        const float tall = random.chance(0.4f) ? random.range(1.2f, 3) : random.range(0.3f, 0.8f);
        const float wide = tall > 1 ? 0.06f : random.range(0.3f, 1.2f);
        const float x = random.range(-1, 1) * half, z = random.range(2.5f, 25);
        addSolid(random, {x, m_ground - tall, z}, {wide, tall, wide});
    }
    for (int i = random.below(4); i > 0; --i)
        addTree(random, random.range(-1, 1) * half * 1.2f, random.range(4, 30));
}

void Place::field(RandomSource& random) {
    m_hasGround = true;
    const Colour green = Colour{0.10f, 0.18f, 0.04f} * random.range(0.6f, 2.5f);
    const Colour ground = random.chance(0.6f) ? green : quietColour(random);
    m_groundPattern = random.chance(0.8f) ? Pattern::cloudy(ground, ground * random.range(0.3f, 0.8f),
                                                            random.range(0.1f, 0.8f), m_seed)
                                          : surfacePattern(random);
    m_haze = random.range(0, 0.012f);
    for (int i = 2 + random.below(5); i > 0; --i) {  // hills
        const float z = random.range(40, 150), wide = random.range(20, 60);
        const Colour hill = mix(ground, quietColour(random), random.range(0, 0.6f));
        m_solids.push_back(solidOf(Solid::Kind::ellipsoid, {random.range(-1, 1) * z * 0.6f, m_ground + 1, z},
                                   {wide, random.range(3, 22), wide * 0.5f},
                                   Pattern::cloudy(hill, hill * 0.6f, random.range(0.5f, 4), m_seed + 1u)));
    }
    for (int i = random.below(9); i > 0; --i) {
        const float z = random.range(3, 35);
        addTree(random, random.range(-0.6f, 0.6f) * z, z);
    }
    for (int i = random.below(4); i > 0; --i) {
        const Vec3 size{random.range(0.1f, 1), random.range(0.1f, 0.6f), random.range(0.1f, 0.8f)};
        const float z = random.range(2.5f, 12);
        addSolid(random, {random.range(-0.6f, 0.6f) * z, m_ground - size.y, z}, size);
    }
    if (random.chance(0.25f)) {  // a fence or hedge
        const float z = random.range(3, 12);
        Solid fence = solidOf(Solid::Kind::box, {0, m_ground - 0.5f, z}, {14, random.range(0.4f, 1), 0.05f},
                              Pattern(random), random.range(-0.3f, 0.3f));
        fence.leafy = random.chance(0.5f) ? 0.3f : 0.0f;
        m_solids.push_back(fence);
    }
}

void Place::tableTop(RandomSource& random) {
    wall(random);
    m_hasGround = true;
    m_ground = random.range(0.25f, 0.6f);
    m_groundPattern = surfacePattern(random);
    m_pitch = radians(random.range(0, 25));
    for (int i = 3 + random.below(7); i > 0; --i) {
        const float size = random.range(0.03f, 0.16f);
        const Vec3 half{size, size * random.range(0.5f, 2), size * random.range(0.6f, 1.4f)};
        const float z = random.range(0.6f, 2.2f);
        addSolid(random, {random.range(-0.4f, 0.4f) * z, m_ground - half.y, z}, half);
    }
}

void Place::wall(RandomSource& random) {
    const float yaw = random.chance(0.5f) ? random.range(-0.1f, 0.1f) : random.range(-1, 1);
    const float z = random.range(1.6f, 6);
    m_hasGround = random.chance(0.5f);
    m_groundPattern = surfacePattern(random);
    const Pattern front = random.chance(0.3f) ? Pattern::plain(quietColour(random)) : Pattern(random);
    m_solids.push_back(solidOf(Solid::Kind::box, {0, 0, z + 0.3f}, {30, 12, 0.3f}, front, yaw));
    for (int i = random.chance(0.6f) ? random.below(9) : 0; i > 0; --i) {  // posters, boards, pipes
        const Vec3 size{random.range(0.05f, 0.8f), random.range(0.05f, 0.8f), random.range(0.01f, 0.15f)};
        const float x = random.range(-0.6f, 0.6f) * z;
        const Vec3 at{x, random.range(-0.5f, 0.5f) * z, z - x * sineOf(yaw) / std::max(0.4f, cosineOf(yaw))};
        m_solids.push_back(solidOf(Solid::Kind::box, at, size, Pattern(random), yaw));
    }
    for (int i = random.chance(0.35f) ? random.below(5) : 0; i > 0; --i)
        addSolid(random,
                 {random.range(-0.6f, 0.6f) * z, random.range(-0.3f, 0.6f) * z, z * random.range(0.6f, 0.9f)},
                 {random.range(0.05f, 0.4f), random.range(0.05f, 0.6f), random.range(0.05f, 0.3f)});
    m_lampTowards.z = -std::fabs(m_lampTowards.z) - 0.1f;
}

void Place::heap(RandomSource& random) {
    m_hasGround = random.chance(0.5f);
    m_groundPattern = Pattern(random);
    for (int i = 6 + random.below(25); i > 0; --i) {
        const float z = random.range(1.5f, 12), size = z * random.range(0.03f, 0.3f);
        addSolid(random, {random.range(-0.7f, 0.7f) * z, random.range(-0.6f, 0.6f) * z, z},
                 {size * random.range(0.3f, 1.5f), size * random.range(0.3f, 1.5f), size});
    }
    if (random.chance(0.7f))
        m_solids.push_back(solidOf(Solid::Kind::box, {0, 0, random.range(9, 20)}, {40, 20, 0.3f},
                                   Pattern(random), random.range(-0.6f, 0.6f)));
}

}  // namespace zeldepth
