#include "hairGuides.h"

namespace zel::drawing {

namespace {

struct Station {
    float x, y, lift;
};

/// Guides are told for the right half; `side` mirrors them, and the root moves to the part.
HairGuide guide(float side, float part, std::initializer_list<Station> stations, float volume, float scaleX) {
    HairGuide result;
    int i = 0;
    const int count = static_cast<int>(stations.size());
    for (const Station& s : stations) {
        const float t = static_cast<float>(i++) / static_cast<float>(count - 1);
        const float fromPart = smoothStep(0.5f, 0.0f, t);
        // Volume lifts what lies outside the skull.
        const float outwards = 1.0f + (volume - 1.0f) * 0.12f * smoothStep(20, 80, s.x);
        const float up = s.y < -95 ? (s.y + 95) * (volume - 1.0f) * 0.6f : 0.0f;
        result.push_back({side * s.x * scaleX * outwards + part * fromPart, s.y + up, s.lift * volume});
    }
    return result;
}

/// Long hair that falls from a part down beside the face to `length` mm below the eyes.
HairSection longSide(const Sitter& s, float side, float part, float end, float tuck, float scaleX) {
    const float v = s.hairVolume;
    const float a = end * 0.30f, b = end * 0.65f;
    HairSection section;
    section.guides = {guide(side, part,
                            {{2, -68, 5},
                             {21, -71, 9},
                             {47, -57, 10},
                             {65, -22, 7},
                             {71, a, 4},
                             {69, b, 4},
                             {60 - tuck, end * 0.94f, 6}},
                            v, scaleX),
                      guide(side, part,
                            {{1, -88, 6},
                             {24, -95, 12},
                             {58, -78, 14},
                             {73, -32, 10},
                             {77, a, 6},
                             {77, b, 7},
                             {70 - tuck, end, 8}},
                            v, scaleX),
                      guide(side, part,
                            {{0, -105, 6},
                             {26, -113, 14},
                             {65, -93, 14},
                             {82, -42, 8},
                             {87, a, 2},
                             {87, b, 2},
                             {81 - tuck, end * 1.02f, 3}},
                            v, scaleX),
                      guide(side, part,
                            {{0, -123, 2},
                             {26, -126, 4},
                             {68, -108, 4},
                             {88, -52, 0},
                             {95, a, -6},
                             {97, b, -8},
                             {92 - tuck, end, -4}},
                            v, scaleX)};
    section.ragged = 0.16f;
    return section;
}

/// What hangs behind the neck.
HairSection curtain(float end, float scaleX, float volume) {
    HairSection section;
    for (const float x : {-1.0f, -0.5f, 0.0f, 0.5f, 1.0f}) {
        const float wide = 90 * scaleX * (1 + (volume - 1) * 0.1f);
        section.guides.push_back({{x * wide * 0.9f, -30, -20},
                                  {x * wide, 20, -30},
                                  {x * wide, end * 0.6f, -30},
                                  {x * wide * 0.95f, end, -25}});
    }
    section.ragged = 0.12f;
    return section;
}

HairSection sweptOver(const Sitter& s, float side, float part, float scaleX) {
    const float v = s.hairVolume;
    HairSection section;
    section.guides = {
        guide(side, part,
              {{0, -70, 4}, {13, -82, 9}, {38, -80, 11}, {54, -68, 8}, {62, -54, 5}, {66, -40, 2}}, v,
              scaleX),
        guide(side, part,
              {{0, -88, 6}, {15, -104, 12}, {43, -101, 13}, {61, -84, 9}, {69, -62, 4}, {70.5f, -38, 1}}, v,
              scaleX),
        guide(side, part,
              {{0, -120, 2}, {14, -130, 4}, {45, -124, 4}, {66, -101, 2}, {73, -70, 0}, {70.5f, -32, -2}}, v,
              scaleX)};
    section.ragged = 0.4f;
    section.spread = 2.4f;
    return section;
}

HairSection sweptAside(const Sitter& s, float side, float part, float scaleX) {
    const float v = s.hairVolume;
    HairSection section;
    section.guides = {
        guide(side, part, {{0, -69, 3}, {9, -71, 5}, {28, -67, 5}, {48, -58, 4}, {63, -40, 2}}, v, scaleX),
        guide(side, part, {{0, -93, 4}, {10, -99, 7}, {34, -94, 7}, {59, -72, 4}, {69, -38, 1}}, v, scaleX),
        guide(side, part, {{0, -121, 2}, {12, -127, 3}, {36, -120, 2}, {66, -93, 0}, {71, -34, -2}}, v,
              scaleX)};
    section.ragged = 0.4f;
    section.spread = 2.2f;
    return section;
}

/// y of the head's upper outline at a distance of `x` mm from its middle.
float outlineTop(const FaceShape& shape, float x) {
    constexpr int kSteps = 60;
    for (int i = 0; i < kSteps; ++i) {
        const Vec2 p = shape.outlinePoint(-0.5f * kPi * (1.0f - static_cast<float>(i) / kSteps));
        if (p.x >= x) return p.y;
    }
    return -30;
}

/// Roots all along the hairline, hair combed up and back over the head.
HairSection combedBack(const Sitter& s, const FaceShape& shape, float loft, float narrowing) {
    HairSection section;
    const float temple = shape.outlineRadius(-0.3f) - 1.5f;
    for (const float share :
         {-1.0f, -0.95f, -0.85f, -0.66f, -0.36f, 0.0f, 0.36f, 0.66f, 0.85f, 0.95f, 1.0f}) {
        const float reach = std::fabs(share), x = share * temple;
        const float y = std::min(hairlineY(s, std::fabs(x)), -10.0f);
        const float over = loft * (1.0f - 0.8f * reach * reach);
        const float topY = outlineTop(shape, std::fabs(x)) - over - 3.0f;
        const float wide = x * (1.0f + 0.004f * loft);
        section.guides.push_back({{x, y, 1},
                                  {wide * 1.01f, mix(y, topY, 0.30f), 5 + 0.6f * over},
                                  {wide * 1.03f, mix(y, topY, 0.68f), 5 + 0.6f * over},
                                  {wide * 1.01f, topY, 1},
                                  {wide * narrowing, topY - 10.0f * (1.0f - narrowing) - 4.0f * reach, -6}});
    }
    section.ragged = 0.10f;
    section.spread = 1.6f;
    return section;
}

HairPatch shortSides() {
    HairPatch patch;
    patch.amount = 0.9f;
    patch.low = 0.86f;
    patch.high = 1.03f;
    patch.lengthMm = 7;
    patch.comb = {0, 0.9f};
    return patch;
}

void planLong(HairPlan& plan, const Sitter& s, float scaleX) {
    const float part = s.partSide * (s.seed % 3 == 0 ? 3.0f : 17.0f);
    const bool bob = s.style == HairStyle::bob;
    const float end = bob ? 108.0f : 215.0f + static_cast<float>(s.seed % 5) * 14.0f;
    const float wave = s.style == HairStyle::longWavy ? 7.5f : bob ? 1.0f : 1.6f;
    for (const float side : {-1.0f, 1.0f}) {
        plan.front.push_back(longSide(s, side, part, end, bob ? 12.0f : 0.0f, scaleX));
        plan.front.back().wave = wave;
        plan.front.back().spread = s.style == HairStyle::longWavy ? 2.6f : 1.5f;
    }
    plan.back.push_back(curtain(end, scaleX, s.hairVolume));
    plan.back.back().wave = wave;
}

}  // namespace

float hairlineY(const Sitter& s, float x) {
    const float recede = mix(0.0f, 7.0f, s.masculine);
    const float forehead = -66.0f * s.foreheadHeight;
    return forehead - recede * bell(x, 38, 16) + 14.0f * smoothStep(34, 56, x) +
           46.0f * smoothStep(50, 71, x);
}

HairPlan planHair(const Sitter& s, const FaceShape& shape) {
    HairPlan plan;
    const float scaleX = shape.outlineRadius(-0.3f) / 73.5f;
    switch (s.style) {
        case HairStyle::bob:
        case HairStyle::longStraight:
        case HairStyle::longWavy:
            planLong(plan, s, scaleX);
            break;
        case HairStyle::sideParted:
            plan.patch = shortSides();
            plan.front.push_back(sweptAside(s, s.partSide, s.partSide * 26, scaleX));
            plan.front.push_back(sweptOver(s, -s.partSide, s.partSide * 26, scaleX));
            plan.front.back().share = 2;
            break;
        case HairStyle::swept:
            plan.patch = shortSides();
            plan.front.push_back(combedBack(s, shape, 11 * s.hairVolume, 0.96f));
            plan.front.back().spread = 2.4f;
            break;
        case HairStyle::tiedBack:
            plan.patch = shortSides();
            plan.patch.comb = {0, -1.6f};
            plan.patch.high = 0.965f;
            plan.front.push_back(combedBack(s, shape, 3, 0.8f));
            plan.bun = s.seed % 2 == 0;
            break;
        case HairStyle::curly:
            plan.patch = {1.3f,
                          0.52f,
                          1.08f + 0.09f * s.hairVolume,
                          mix(58.0f, 4.0f, s.masculine),
                          26,
                          mix(4.6f, 3.2f, s.melanin),
                          {0, 0.15f},
                          4};
            break;
        case HairStyle::crop:
            plan.patch = {1.3f, 0.52f, 1.03f, 3, 15, 0, {0.25f * s.partSide, -0.45f}, 0};
            break;
        case HairStyle::shaved:
            plan.patch = {1.3f, 0.52f, 1.0f, 3, 2.6f, 0, {0, 0.3f}, 0};
            break;
    }
    return plan;
}

}  // namespace zel::drawing
