#include "variedPortrait.h"

#include <random>

namespace zeltrain {

namespace {

/// Uniform numbers that are the same with every standard library.
class Dice {
public:
    explicit Dice(unsigned seed) : m_engine(seed * 2654435761u + 17u) {}
    double between(double low, double high) { return low + (high - low) * share(); }
    bool chance(double probability) { return share() < probability; }
    double share() { return static_cast<double>(m_engine()) / 4294967296.0; }

private:
    std::mt19937 m_engine;
};

void varyPose(zel::PortraitParams& params, Dice& dice) {
    params.headHeight = dice.between(0.42, 0.72);
    params.centreX = dice.between(0.42, 0.58);
    params.centreY = dice.between(0.42, 0.50);
    params.yaw = dice.chance(0.7) ? dice.between(-22, 22) : dice.between(-5, 5);
    params.roll = dice.between(-12, 12);
    params.tilt = dice.between(-10, 10);
}

void varyExpression(zel::PortraitParams& params, Dice& dice) {
    params.smile = dice.between(-0.5, 1);
    params.eyeOpen = dice.chance(0.15) ? dice.between(0.3, 0.8) : dice.between(0.8, 1.2);
    params.gazeX = dice.between(-0.8, 0.8);
    params.gazeY = dice.between(-0.5, 0.5);
    params.browThickness = dice.between(0.5, 1.8);
    params.lipFullness = dice.between(0.6, 1.5);
    params.lipstick = dice.chance(0.4) ? dice.between(0, 1) : 0.0;
    params.jawWidth = dice.between(0.87, 1.13);
    params.chinLength = dice.between(0.87, 1.13);
    params.faceWidth = dice.between(0.9, 1.12);
}

void varyLight(zel::PortraitParams& params, Dice& dice) {
    params.lightDirection = dice.between(-75, 75);
    params.lightHeight = dice.between(0, 65);
    params.lightContrast = dice.between(0.05, 0.9);
    params.exposure = dice.between(-1, 0.7);
    params.noise = dice.between(0, 0.8);
    if (dice.chance(0.5)) params.wrinkles = dice.between(0, 1);
    if (dice.chance(0.4)) params.darkCircles = dice.between(0, 1);
    if (dice.chance(0.3)) params.freckles = dice.between(0, 1);
    if (dice.chance(0.3)) params.moles = static_cast<int>(dice.between(0, 12));
}

}  // namespace

zel::PortraitParams variedPortrait(unsigned seed, int longSide) {
    Dice dice(seed);
    zel::PortraitParams params;
    params.seed = seed;
    params.height = longSide;
    params.width = longSide * 7 / 8;
    varyPose(params, dice);
    varyExpression(params, dice);
    varyLight(params, dice);
    return params;
}

}  // namespace zeltrain
