#pragma once

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <limits>

#include "support/drawnFace.h"
#include "support/guardedBytes.h"
#include "support/operations.h"

namespace zeltest {

/// Guarded buffers for one call, and arguments that step through lists of bad values. The lists' lengths have
/// no common divisor, so that kRounds rounds meet every pair of values.
class HostileScene {
public:
    static constexpr int kRounds = 99;

    HostileScene(int width, int height, int round)
        : m_width(width),
          m_height(height),
          m_round(round),
          m_picture(drawnFace(width, height)),
          m_noise(randomRgba(width, height, 4)),
          m_plane(randomPlane(width, height, 5)),
          m_image(m_picture.size(), side()),
          m_second(m_picture.size(), side()),
          m_cover(m_picture.size(), side()),
          m_mask(m_plane.size(), side()),
          m_table(kTableBytes.size(), side()) {
        std::copy(m_picture.begin(), m_picture.end(), m_image.data());
        for (GuardedBytes* buffer : {&m_second, &m_cover})
            std::copy(m_noise.begin(), m_noise.end(), buffer->data());
        for (int i = 0; i < width * height; ++i) {
            const int x = i % width, y = i / width;
            unsigned char& mark = m_plane[static_cast<std::size_t>(i)];
            const bool border = x == 0 || y == 0 || x == width - 1 || y == height - 1;
            const bool marked[] = {mark >= 200, true, false, border, x >= width / 2, i == width * height / 2};
            const std::size_t kind = static_cast<std::size_t>(round / 2) % 6;
            mark = !marked[kind] ? 0 : kind == 0 ? mark : 255;
        }
        std::copy(m_plane.begin(), m_plane.end(), m_mask.data());
        std::copy(kTableBytes.begin(), kTableBytes.end(), m_table.data());
        addFaces();
    }

    Call call(DefocusCore::ZelDepthDefocusRender& render) {
        constexpr float kInf = std::numeric_limits<float>::infinity();
        const std::array<float, 7> strengths = {0.5f, NAN, kInf, -kInf, 1e30f, -5, 1};
        const std::array<int, 11> numbers = {1, 0, 2, 3, 4, 6, -1, 100, 5000, INT_MAX, INT_MIN};
        const std::array<int, 4> indices = {0, -1, 99, INT_MIN};
        const bool noMask = m_round % 5 == 3, noSecond = m_round % 5 == 4;
        const auto w = static_cast<float>(m_width), h = static_cast<float>(m_height);
        Call c{m_image.data(),
               noSecond ? nullptr : m_second.data(),
               noMask ? nullptr : m_cover.data(),
               noMask ? nullptr : m_mask.data(),
               noSecond ? nullptr : m_table.data(),
               m_width,
               m_height,
               !noSecond,
               pick(strengths),
               pick(numbers),
               numbers[static_cast<std::size_t>(m_round / 2) % numbers.size()],
               pick(indices),
               {},
               faceKind() == kNull ? nullptr : &m_points,
               faceKind() == kNull ? nullptr : reinterpret_cast<ImageCoreFaceInfo*>(&m_record),
               &render,
               m_round,
               nullptr};
        const std::array<float, 4> good = {0.1f * w, 0.1f * h, 0.8f * w, 0.8f * h};
        const auto rect = m_round % 2 ? c.spoiled(good) : good;
        c.rect = {rect[0], rect[1], rect[2], rect[3]};
        return c;
    }

    bool hasFace() const { return faceKind() < kNobody; }
    bool guardsIntact() const {
        return m_image.guardsIntact() && m_second.guardsIntact() && m_cover.guardsIntact() &&
               m_mask.guardsIntact() && m_table.guardsIntact();
    }
    bool pictureUntouched() { return std::equal(m_picture.begin(), m_picture.end(), m_image.data()); }
    bool alphaUntouched() {
        for (std::size_t i = 3; i < m_picture.size(); i += 4)
            if (m_image[i] != m_picture[i]) return false;
        return true;
    }
    bool nothingTouched() {
        return pictureUntouched() && std::equal(m_noise.begin(), m_noise.end(), m_second.data()) &&
               std::equal(m_noise.begin(), m_noise.end(), m_cover.data()) &&
               std::equal(m_plane.begin(), m_plane.end(), m_mask.data());
    }

private:
    enum FaceKind { kGood, kHalfNaN, kOnePlace, kFarOff, kInfinite, kHuge, kNobody, kOnlyPromised, kNull };
    static inline const Bytes kTableBytes = randomRgba(64, 64, 9);

    GuardedBytes::Against side() const {
        return m_round % 2 ? GuardedBytes::Against::pageBefore : GuardedBytes::Against::pageBehind;
    }
    FaceKind faceKind() const { return static_cast<FaceKind>(m_round % 9); }
    template <typename T, std::size_t N>
    T pick(const std::array<T, N>& values) const {
        return values[static_cast<std::size_t>(m_round) % N];
    }

    float spoiledLandmark(float value, std::size_t i) const {
        switch (faceKind()) {
            case kHalfNaN:
                return i % 2 ? NAN : value;
            case kOnePlace:
                return 0.5f;
            case kFarOff:
                return value + (m_round % 2 ? 1e6f : 0.62f);  // or one eye on the far corner
            case kInfinite:
                return i % 5 ? value : std::numeric_limits<float>::infinity();
            case kHuge:
                return i % 3 ? -1e30f : value;
            default:
                return value;
        }
    }
    void addFaces() {
        std::array<zellab::Vector2f, 83> landmarks;
        for (std::size_t i = 0; i < landmarks.size(); ++i) {
            auto& to = m_record.face.points[i];
            to[0] = spoiledLandmark(zellab::kTemplateLandmarks[i].x, i);
            to[1] = spoiledLandmark(zellab::kTemplateLandmarks[i].y, i + 1);
            landmarks[i] = {to[0] * static_cast<float>(m_width), to[1] * static_cast<float>(m_height)};
        }
        for (std::size_t i = 0; i < 4; ++i) m_record.face.rect[i] = spoiledLandmark(i < 2 ? 0.1f : 0.8f, i);
        m_record.head.faceCount = faceKind() == kNobody ? 0 : faceKind() == kOnlyPromised ? -5 : 1;
        m_points.SetFaceCount(faceKind() == kNobody ? 0 : faceKind() == kOnlyPromised ? 3 : 1);
        if (faceKind() < kNobody) m_points.AddFace(landmarks.data(), 0);
    }

    int m_width, m_height, m_round;
    Bytes m_picture, m_noise, m_plane;
    GuardedBytes m_image, m_second, m_cover, m_mask, m_table;
    zellab::CInterFacePoint m_points;
    struct {
        ImageCoreFaceInfo head{};
        ImageCoreFace face{};
    } m_record;
};

}  // namespace zeltest
