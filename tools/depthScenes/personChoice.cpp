#include "person.h"

namespace zeldepth {

using namespace zel::drawing;

Person::Turn Person::Turn::by(float degrees) {
    return {sineOf(radians(degrees)), cosineOf(radians(degrees))};
}

Person::Person(RandomSource& random) : m_seed(static_cast<std::uint32_t>(random.below(1 << 24))) {
    const float stand = random.uniform();
    float bodyYaw = 16 * random.bellShaped();
    if (stand > 0.62f) bodyYaw = random.range(-65, 65);
    if (stand > 0.86f) bodyYaw = random.chance(0.5f) ? random.range(60, 110) : random.range(-110, -60);
    if (stand > 0.95f) bodyYaw = random.range(110, 250);
    m_bodyYaw = Turn::by(bodyYaw);
    m_headYaw = Turn::by(bodyYaw * random.range(0.3f, 1) + 14 * random.bellShaped());
    m_headPitch = Turn::by(9 * random.bellShaped());
    m_headRoll = Turn::by(8 * random.bellShaped());
    chooseHead(random);
    chooseHair(random);
    chooseBody(random);
    poseArms(random);
}

void Person::chooseHead(RandomSource& random) {
    m_headSize = random.range(0.9f, 1.12f);
    m_jaw = random.range(0.82f, 1.22f);
    m_nose = random.range(0.75f, 1.35f);
    m_eyes = random.range(0.75f, 1.3f);
    m_brow = random.range(0.3f, 1.6f);
    m_smile = random.range(-0.4f, 1);
    m_open = random.chance(0.4f) ? random.range(0.2f, 1) : 0;
    m_beard = random.chance(0.25f) ? random.range(0.15f, 1) : 0;
    m_lipstick = random.chance(0.35f) ? random.range(0.2f, 1) : 0;
    m_glasses = random.chance(0.25f) ? 1 + random.below(2) : 0;
    m_rims = random.chance(0.6f) ? Colour{0.01f, 0.01f, 0.01f} : randomColour(random);
    const float dark = random.uniform();
    const Colour light = fromSrgb(245, 208, 185), middle = fromSrgb(186, 132, 98),
                 deep = fromSrgb(64, 38, 28);
    m_skin = dark < 0.5f ? mix(light, middle, dark * 2) : mix(middle, deep, dark * 2 - 1);
    m_skin =
        m_skin * Colour{random.range(0.85f, 1.15f), random.range(0.9f, 1.1f), random.range(0.85f, 1.15f)};
    m_iris = mix(fromSrgb(40, 24, 14), fromSrgb(110, 150, 170), square(random.uniform()));
    m_lips = m_skin * Colour{0.85f, 0.55f, 0.55f};
}

void Person::chooseHair(RandomSource& random) {
    m_cut = static_cast<HairCut>(random.below(static_cast<int>(HairCut::cuts)));
    if (m_cut == HairCut::none && random.chance(0.5f)) m_cut = HairCut::short_;
    m_hat = random.chance(0.3f) ? static_cast<Hat>(random.below(static_cast<int>(Hat::hats))) : Hat::none;
    if (m_hat != Hat::none && m_cut == HairCut::round) m_cut = HairCut::bob;
    m_hairThick = m_cut == HairCut::close ? random.range(0.002f, 0.008f) : random.range(0.008f, 0.03f);
    m_hairline = random.range(-0.025f, 0.03f);
    m_hairLength = m_cut == HairCut::bob ? random.range(0.03f, 0.09f) : random.range(0.12f, 0.4f);
    m_waves = random.chance(0.4f) ? random.range(0.002f, 0.010f) : 0.001f;
    const Colour kHairs[] = {fromSrgb(18, 15, 14),    fromSrgb(46, 32, 24),   fromSrgb(92, 60, 38),
                             fromSrgb(120, 62, 34),   fromSrgb(178, 140, 92), fromSrgb(222, 196, 150),
                             fromSrgb(128, 126, 124), fromSrgb(224, 222, 218)};
    m_hair = random.chance(0.06f) ? randomColour(random) : kHairs[random.below(8)] * random.range(0.7f, 1.4f);
    m_hatPattern = random.chance(0.6f) ? Pattern::plain(randomColour(random)) : Pattern(random);
}

void Person::chooseBody(RandomSource& random) {
    m_bulk = random.range(0.85f, 1.35f);
    m_shoulders = random.range(0.155f, 0.225f) * (0.7f + 0.3f * m_bulk);
    m_slope = random.range(-0.2f, 0.7f);
    const auto cloth = [&] {
        if (random.chance(0.25f))
            return Pattern::plain(Colour{0.012f, 0.012f, 0.014f} * random.range(0.5f, 4));
        if (random.chance(0.18f)) return Pattern::plain(Colour{0.8f, 0.8f, 0.8f} * random.range(0.6f, 1.2f));
        return random.chance(0.55f) ? Pattern::plain(randomColour(random)) : Pattern(random);
    };
    m_coat = cloth();
    m_shirt = random.chance(0.4f) ? Pattern::plain({0.8f, 0.8f, 0.8f}) : cloth();
    m_tie = cloth();
    m_thing = Pattern(random);
    m_coatOpen = random.chance(0.4f);
    m_hasTie = m_coatOpen && random.chance(0.45f);
    m_bareArms = random.chance(0.3f);
    m_bareShoulders = !m_coatOpen && random.chance(0.12f);
    m_collar = random.chance(0.4f);
    m_badges = random.chance(0.3f) ? 1 + random.below(5) : 0;
    m_neckline = random.range(-0.01f, 0.14f);
    m_opening = random.range(0.15f, 0.45f);
}

void Person::poseArms(RandomSource& random) {
    const auto pose = static_cast<Pose>(random.below(static_cast<int>(Pose::poses)));
    m_holding = pose == Pose::holding;
    const bool bothUp = random.chance(0.6f);
    for (int i = 0; i < 2; ++i) {
        const float side = i == 0 ? -1.0f : 1.0f;
        Arm& arm = m_arms[i];
        const float out = m_shoulders + random.range(0.01f, 0.05f);
        arm.shoulder = {side * m_shoulders, 0.26f + 0.1f * m_slope * 0.5f, 0.04f};
        arm.elbow = {side * (out + 0.03f), 0.54f + random.range(-0.03f, 0.03f), 0.06f};
        arm.hand = {side * (out + random.range(-0.05f, 0.06f)), 0.79f, random.range(-0.1f, 0.05f)};
        if (pose == Pose::crossed) {
            arm.elbow = {side * (out + 0.02f), 0.51f, -0.04f};
            arm.hand = {-side * 0.10f, 0.46f + 0.05f * static_cast<float>(i), -0.16f};
        } else if (pose == Pose::atFace && i == 0) {
            arm.elbow = {side * out, 0.48f, -0.10f};
            arm.hand = {side * random.range(0.02f, 0.10f), random.range(0.10f, 0.24f), -0.15f};
        } else if (pose == Pose::onHips) {
            arm.elbow = {side * (out + 0.16f), 0.50f, 0.08f};
            arm.hand = {side * (m_shoulders - 0.01f), 0.70f, -0.03f};
        } else if (pose == Pose::raised && (i == 0 || bothUp)) {
            arm.elbow = {side * (out + random.range(0.12f, 0.24f)), random.range(0.0f, 0.22f), 0.04f};
            arm.hand = {side * random.range(0.06f, 0.14f), random.range(-0.2f, 0.0f),
                        random.range(-0.05f, 0.1f)};
        } else if (pose == Pose::holding) {
            arm.elbow = {side * (out + 0.03f), 0.53f, -0.03f};
            arm.hand = {side * random.range(0.06f, 0.16f), 0.53f, -0.22f};
        }
    }
    m_thingKind = random.below(2);
    const float size = random.range(0.06f, 0.17f);
    m_thingSize = {size, size * random.range(0.6f, 1.4f), size * random.range(0.3f, 1)};
    m_thingAt = {random.range(-0.1f, 0.1f), 0.53f - random.range(0, 0.1f), -0.24f - 0.5f * m_thingSize.z};
}

}  // namespace zeldepth
