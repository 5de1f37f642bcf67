#pragma once

#include <array>
#include <cmath>
#include <random>

#include "beautykernel/eyebright/eyeGeometry.h"
#include "portrait/portrait.h"
#include "zel_effects/interFacePoint.h"

/// Synthetic eyes whose irises are known, for the test of the iris finder and for its measure.

namespace zeltest {

/// What counts as found, in shares of the eye's width.
inline constexpr float kCentreLimit = 0.08f, kRadiusLimit = 0.12f;

/// Irises from pale blue to near black in every skin tone; every third pair has its lids half closed.
inline zel::PortraitParams eyesToMeasure(unsigned seed) {
    std::mt19937 engine(seed);
    const auto between = [&](double low, double high) {
        return low + (high - low) * static_cast<double>(engine()) / 4294967296.0;
    };
    zel::PortraitParams params;
    params.seed = seed;
    params.width = seed % 2 ? 600 : 420;
    params.height = params.width / 3 * 4;
    params.irisColour = static_cast<zel::IrisColour>(seed % 7);
    params.skinTone = static_cast<zel::SkinTone>(seed / 7 % 7);
    params.eyeOpen = seed % 3 == 0 ? between(0.4, 0.65) : between(0.7, 1.2);
    params.gazeX = between(-0.8, 0.8);
    params.gazeY = between(-0.5, 0.5);
    params.yaw = between(-15, 15);
    params.roll = between(-10, 10);
    params.lightDirection = between(-70, 70);
    params.lightContrast = between(0.1, 0.9);
    params.exposure = between(-0.8, 0.6);
    params.noise = between(0, 0.8);
    return params;
}

/// The points of a portrait's face, both pupils moved by `move` eye's widths in a direction of the seed's.
class FacePoints {
public:
    FacePoints(const zel::Portrait& portrait, unsigned seed, float move) {
        const auto& truth = portrait.faces.faces.front().points;
        for (std::size_t i = 0; i < m_landmarks.size(); ++i)
            m_landmarks[i] = {truth[i].x * static_cast<float>(portrait.image.width),
                              truth[i].y * static_cast<float>(portrait.image.height)};
        std::mt19937 engine(seed * 977u + 5u);
        for (int eye = 0; eye < 2; ++eye) {
            const float angle = static_cast<float>(engine() % 6283u) / 1000.0f, by = move * eyeWidth(eye);
            auto& moved = m_landmarks[eye == 0 ? 24 : 70];
            moved = {moved.x + by * std::cos(angle), moved.y + by * std::sin(angle)};
        }
        m_points.SetFaceCount(1);
        m_points.AddFace(m_landmarks.data(), 0);
    }

    zellab::CInterFacePoint& points() { return m_points; }
    const zellab::Vector2f* list() const { return m_points.GetInterPoints(0); }
    const zellab::Vector2f& pupil(int eye) const { return m_landmarks[eye == 0 ? 24 : 70]; }
    float eyeWidth(int eye) const {
        const auto &a = m_landmarks[eye == 0 ? 21 : 67], &b = m_landmarks[eye == 0 ? 25 : 71];
        return std::hypot(a.x - b.x, a.y - b.y);
    }

private:
    zellab::CInterFacePoint m_points;
    std::array<zellab::Vector2f, 83> m_landmarks;
};

struct IrisError {
    bool found;
    float centre, radius;  // distances from the truth in eye's widths
};

inline IrisError errorOf(const zellab::Iris& iris, const zel::Spot& truth, float eyeWidth) {
    // A pixel's centre lies at a half for the portrait, at a whole number for the finder.
    return {iris.found(), std::hypot(iris.x + 0.5f - truth.x, iris.y + 0.5f - truth.y) / eyeWidth,
            std::abs(iris.radius - truth.radius) / eyeWidth};
}

inline std::array<IrisError, 2> irisErrors(const zel::Portrait& portrait, const FacePoints& face) {
    const zellab::ConstImageView picture(portrait.image.rgba.data(), portrait.image.width,
                                         portrait.image.height);
    const auto of = [&](int eye, zellab::EyeSide side) {
        return errorOf(zellab::locateIris(picture, face.list(), side),
                       portrait.irises[static_cast<std::size_t>(eye)], face.eyeWidth(eye));
    };
    return {of(0, zellab::EyeSide::left), of(1, zellab::EyeSide::right)};
}

}  // namespace zeltest
