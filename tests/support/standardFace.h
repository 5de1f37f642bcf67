#pragma once

#include <array>
#include <cmath>
#include <random>

#include "facepoints/faceTemplate.h"
#include "zel_effects/interFacePoint.h"

namespace zeltest {

using Landmarks = std::array<zellab::Vector2f, zellab::CInterFacePoint::kLandmarkCount>;

/// A front view about `pupilDistance` pixels between its pupils, its nose's tip at (x, y).
inline Landmarks standardFace(float x, float y, float pupilDistance) {
    const auto& t = zellab::kTemplateLandmarks;
    const float scale = pupilDistance / (t[70].x - t[24].x);
    Landmarks landmarks;
    for (std::size_t i = 0; i < landmarks.size(); ++i)
        landmarks[i] = {x + (t[i].x - t[64].x) * scale, y + (t[i].y - t[64].y) * scale * 16.0f / 9.0f};
    return landmarks;
}

/// These landmarks as the one face of a container.
struct OneFace : zellab::CInterFacePoint {
    explicit OneFace(const Landmarks& landmarks) {
        SetFaceCount(1);
        AddFace(landmarks.data(), 0);
    }
    const zellab::Vector2f* list() const { return GetInterPoints(0); }
};

/// A similarity transform, mirrored where `flip` is -1.
struct Placing {
    float scale = 1, angle = 0, dx = 0, dy = 0, flip = 1;
    zellab::Vector2f operator()(zellab::Vector2f p) const {
        const float c = scale * std::cos(angle), s = scale * std::sin(angle), x = flip * p.x;
        return {c * x - s * p.y + dx, s * x + c * p.y + dy};
    }
    Landmarks operator()(Landmarks points) const {
        for (auto& p : points) p = (*this)(p);
        return points;
    }
};

/// Another person, perhaps turned: stretched, narrowed on one side, every landmark a little elsewhere.
inline Landmarks variedFace(const Landmarks& face, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> wide(0.85f, 1.15f), turn(-0.2f, 0.2f);
    const float unit = face[70].x - face[24].x;
    std::uniform_real_distribution<float> noise(-0.006f * unit, 0.006f * unit);
    const float stretchX = wide(random), stretchY = wide(random), side = turn(random);
    const zellab::Vector2f centre = face[64];
    Landmarks varied;
    for (std::size_t i = 0; i < face.size(); ++i) {
        const float x = (face[i].x - centre.x) * stretchX, y = (face[i].y - centre.y) * stretchY;
        varied[i] = {centre.x + x * (x > 0 ? 1 + side : 1 - side) + noise(random),
                     centre.y + y + noise(random)};
    }
    return Placing{1, turn(random), 0, 0, 1}(varied);
}

}  // namespace zeltest
