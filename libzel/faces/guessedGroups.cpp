#include "libzel/faces/guessedGroups.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "libzel/faces/polyline.h"
#include "zel/zel.h"

namespace zel {

using zellab::Vector2f;

namespace {

/// An eye is looked at in a square of this many eyes' lengths.
constexpr float kSquare = 1.6f;
constexpr int kSide = 48;

/// Landmarks of one eye and its brow.
struct EyeNumbers {
    std::size_t first, pupil;  // of lids and pupil as in the landmarks' table
    std::size_t left() const { return first + 2; }
    std::size_t right() const { return first + 6; }
};
constexpr EyeNumbers kLeft{19, 24}, kRight{65, 70};

/// From 0 at `none` to 1 at `full`, on either side of it.
float ramp(float value, float none, float full) {
    return std::clamp((value - none) / (full - none), 0.0f, 1.0f);
}

/// Luma of a square, upright.
class Patch {
public:
    Patch(const ColourPyramid& picture, const TurnedSquare& square, int side)
        : m_side(side), m_luma(static_cast<std::size_t>(side) * static_cast<std::size_t>(side)) {
        const std::vector<float> planes = picture.cut(square, side, 1, 0);
        const std::size_t count = m_luma.size();
        for (std::size_t i = 0; i < count; ++i)
            m_luma[i] = 0.3f * planes[i] + 0.59f * planes[count + i] + 0.11f * planes[2 * count + i];
    }

    const std::vector<float>& luma() const { return m_luma; }

    /// Differences from the mean over two samples about, twice.
    std::vector<float> fine() const {
        std::vector<float> blurred = m_luma;
        for (int i = 0; i < 2; ++i) {
            blurred = boxed(blurred, 1, static_cast<std::size_t>(m_side));
            blurred = boxed(blurred, static_cast<std::size_t>(m_side), 1);
        }
        for (std::size_t i = 0; i < blurred.size(); ++i) blurred[i] = m_luma[i] - blurred[i];
        return blurred;
    }

private:
    std::vector<float> boxed(const std::vector<float>& in, std::size_t step, std::size_t lineStep) const {
        constexpr int kRadius = 2;
        std::vector<float> out(in.size());
        for (int line = 0; line < m_side; ++line)
            for (int i = 0; i < m_side; ++i) {
                float sum = 0;
                for (int k = -kRadius; k <= kRadius; ++k)
                    sum += in[static_cast<std::size_t>(line) * lineStep +
                              static_cast<std::size_t>(std::clamp(i + k, 0, m_side - 1)) * step];
                out[static_cast<std::size_t>(line) * lineStep + static_cast<std::size_t>(i) * step] =
                    sum / (2 * kRadius + 1);
            }
        return out;
    }

    int m_side;
    std::vector<float> m_luma;
};

float meanLuma(const ColourPyramid& picture, Vector2f middle, float side) {
    constexpr int kSamples = 8;
    const auto luma = Patch(picture, {middle, std::max(side, 1.0f), 0}, kSamples).luma();
    return std::accumulate(luma.begin(), luma.end(), 0.0f) / static_cast<float>(luma.size());
}

/// Of skin: nose, cheeks, chin, without the darkest and the lightest of them.
float skinLuma(const ColourPyramid& picture, const Landmarks& p) {
    const Vector2f apart = p[70] - p[24];
    const float side = 0.16f * std::hypot(apart.x, apart.y);
    std::array<float, 4> lumas{
        meanLuma(picture, zellab::mix(zellab::mix(p[55], p[59], 0.5f), p[64], 0.6f), side),
        meanLuma(picture, zellab::mix(p[24], p[37], 0.5f), side),
        meanLuma(picture, zellab::mix(p[70], p[46], 0.5f), side),
        meanLuma(picture, zellab::mix(p[38], p[0], 0.6f), side)};
    std::sort(lumas.begin(), lumas.end());
    return std::max(0.5f * (lumas[1] + lumas[2]), 1.0f);
}

/// What an eye's surroundings look like.
class EyeLook {
public:
    EyeLook(const ColourPyramid& picture, const Landmarks& points, const EyeNumbers& eye)
        : m_points(points), m_eye(eye), m_axis(points[eye.right()] - points[eye.left()]) {
        m_length = std::max(std::hypot(m_axis.x, m_axis.y), 1.0f);
        m_axis = m_axis * (1 / m_length);
        m_middle = zellab::mix(points[eye.left()], points[eye.right()], 0.5f);
        const Patch patch(picture, {m_middle, kSquare * m_length, std::atan2(m_axis.y, m_axis.x)}, kSide);
        m_luma = patch.luma();
        m_fine = patch.fine();
    }

    /// Mean luma below the lower lid.
    float below() const { return mean(m_luma, isBelow); }

    /// Deviation of what is fine there, as a share of the mean: hair has much.
    float texture() const {
        double sum = 0, squares = 0, count = 0;
        forAll([&](Vector2f p, std::size_t i) {
            if (!isBelow(p)) return;
            sum += m_fine[i], squares += m_fine[i] * m_fine[i], ++count;
        });
        constexpr float kDarkest = 20;
        return static_cast<float>(std::sqrt(std::max(squares / count - sum / count * (sum / count), 0.0))) /
               std::max(below(), kDarkest);
    }

    /// From the dark to the light of the opening, but for a twentieth on either side.
    float range() const {
        std::vector<float> lumas;
        forAll([&](Vector2f p, std::size_t i) {
            if (std::abs(p.x) <= 0.5f && std::abs(p.y) <= 0.15f) lumas.push_back(m_luma[i]);
        });
        std::sort(lumas.begin(), lumas.end());
        return lumas[lumas.size() * 19 / 20] - lumas[lumas.size() / 20];
    }

    /// How much it looks like an eye whose lids and iris lie there, -1 to 1: the correlation with one that is drawn
    /// in four levels, after what is even across or down is taken off both.
    float likeness() const {
        std::vector<Vector2f> places;
        std::vector<float> seen, drawn;
        const auto upper = lid({2, 8, 7, 9, 6}), lower = lid({2, 3, 0, 4, 6});
        const Vector2f pupil = inEye(m_points[m_eye.pupil]);
        forAll([&](Vector2f p, std::size_t i) {
            constexpr float kAround = 0.14f, kHalf = 0.62f;
            const float top = heightAt(upper, p.x), bottom = heightAt(lower, p.x);
            if (std::abs(p.x) > kHalf || p.y < top - kAround || p.y > bottom + kAround) return;
            places.push_back(p);
            seen.push_back(m_luma[i]);
            drawn.push_back(drawnAt(p, top, bottom, std::hypot(p.x - pupil.x, p.y - pupil.y)));
        });
        const auto basis = plane(places);
        for (const auto& direction : basis) takeOff(seen, direction), takeOff(drawn, direction);
        const double strength = std::sqrt(dot(seen, seen) * dot(drawn, drawn));
        return strength > 0 ? static_cast<float>(dot(seen, drawn) / strength) : 0;
    }

private:
    using Vector = std::vector<float>;

    static bool isBelow(Vector2f p) { return std::abs(p.x) <= 0.55f && p.y >= 0.3f && p.y <= 0.6f; }

    static float drawnAt(Vector2f p, float top, float bottom, float fromPupil) {
        constexpr float kSkin = 1, kWhite = 0.75f, kIris = 0.2f, kLashes = 0.3f;
        constexpr float kIrisRadius = 0.205f, kLashesReach = 0.05f;
        if (std::abs(p.x) < 0.55f && std::abs(p.y - top) < kLashesReach) return kLashes;
        if (std::abs(p.x) >= 0.5f || p.y <= top || p.y >= bottom) return kSkin;
        return fromPupil < kIrisRadius ? kIris : kWhite;
    }

    /// Place in the eye's frame: 0,0 the middle between the corners, 1 its length.
    Vector2f inEye(Vector2f p) const {
        const Vector2f d = (p - m_middle) * (1 / m_length);
        return {d.x * m_axis.x + d.y * m_axis.y, d.y * m_axis.x - d.x * m_axis.y};
    }

    Polyline lid(std::initializer_list<std::size_t> numbers) const {
        Polyline line;
        for (const std::size_t number : numbers) line.push_back(inEye(m_points[m_eye.first + number]));
        return line;
    }

    /// The lid goes on level beyond its corners.
    static float heightAt(const Polyline& line, float x) {
        if (x <= line.front().x) return line.front().y;
        for (std::size_t i = 0; i + 1 < line.size(); ++i)
            if (x < line[i + 1].x) {
                const float width = line[i + 1].x - line[i].x;
                const float t = width > 0 ? std::clamp((x - line[i].x) / width, 0.0f, 1.0f) : 1;
                return line[i].y + (line[i + 1].y - line[i].y) * t;
            }
        return line.back().y;
    }

    template <typename Visit>
    void forAll(const Visit& visit) const {
        for (std::size_t i = 0; i < m_luma.size(); ++i) {
            const auto at = [](std::size_t k) {
                return kSquare * ((static_cast<float>(k) + 0.5f) / kSide - 0.5f);
            };
            visit(Vector2f{at(i % kSide), at(i / kSide)}, i);
        }
    }

    template <typename Inside>
    float mean(const Vector& values, const Inside& inside) const {
        float sum = 0, count = 0;
        forAll([&](Vector2f p, std::size_t i) {
            if (inside(p)) sum += values[i], ++count;
        });
        return sum / count;
    }

    static double dot(const Vector& a, const Vector& b) {
        return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
    }

    static void takeOff(Vector& from, const Vector& direction) {
        const auto share = static_cast<float>(dot(from, direction));
        for (std::size_t i = 0; i < from.size(); ++i) from[i] -= share * direction[i];
    }

    /// Unit vectors, upright on each other, that span what rises evenly over the places.
    static std::array<Vector, 3> plane(const std::vector<Vector2f>& places) {
        std::array<Vector, 3> basis;
        for (const Vector2f p : places) {
            basis[0].push_back(1);
            basis[1].push_back(p.x);
            basis[2].push_back(p.y);
        }
        for (std::size_t k = 0; k < basis.size(); ++k) {
            for (std::size_t i = 0; i < k; ++i) takeOff(basis[k], basis[i]);
            const double length = std::sqrt(dot(basis[k], basis[k]));
            for (float& v : basis[k]) v = length > 0 ? v / static_cast<float>(length) : 0;
        }
        return basis;
    }

    const Landmarks& m_points;
    const EyeNumbers& m_eye;
    Vector2f m_axis, m_middle{};
    float m_length = 1;
    Vector m_luma, m_fine;
};

/// How surely an eye is hidden by a dark lens, and by hair.
struct Hidden {
    float lens, hair;
};

/// Judged on 66 eyes of 31 photographs, and with hair and lenses pasted over them: a dark lens leaves a fifth of the
/// skin's light below the eye at most and next to nothing in its opening, where other eyes keep half of it; hair is
/// uneven and darker than skin. Neither looks like an eye.
Hidden hiddenEye(const ColourPyramid& picture, const Landmarks& points, const EyeNumbers& eye, float skin) {
    const EyeLook look(picture, points, eye);
    const float below = look.below() / skin, likeness = look.likeness();
    return {ramp(below, 0.5f, 0.3f) *
                std::max(ramp(likeness, 0.75f, 0.6f), ramp(look.range() / skin, 0.35f, 0.2f)),
            ramp(below, 0.8f, 0.65f) * ramp(look.texture(), 0.055f, 0.075f) * ramp(likeness, 0.5f, 0.35f)};
}

/// The far side of a turned face: by how far the temples lie from the nose's bridge, the nearer as a share of the other.
float guessedContour(const Landmarks& p) {
    const Vector2f eyes = p[70] - p[24], bridge = zellab::mix(p[55], p[59], 0.5f);
    const auto away = [&](Vector2f temple) {
        return std::abs((temple.x - bridge.x) * eyes.x + (temple.y - bridge.y) * eyes.y);
    };
    const float left = away(p[1]), right = away(p[10]), further = std::max(left, right);
    return further > 0 ? ramp(std::min(left, right) / further, 0.55f, 0.35f) : 0;
}

}  // namespace

std::array<float, kFaceGroups> guessedGroups(const ColourPyramid& picture, const Landmarks& points) {
    std::array<float, kFaceGroups> guessed{};
    const float skin = skinLuma(picture, points);
    const Hidden left = hiddenEye(picture, points, kLeft, skin),
                 right = hiddenEye(picture, points, kRight, skin);
    guessed[ZEL_GROUP_CONTOUR] = guessedContour(points);
    guessed[ZEL_GROUP_LEFT_EYE] = std::max(left.lens, left.hair);
    guessed[ZEL_GROUP_RIGHT_EYE] = std::max(right.lens, right.hair);
    // Hair falls over an eye from above.
    guessed[ZEL_GROUP_LEFT_BROW] = left.hair * (1 - left.lens);
    guessed[ZEL_GROUP_RIGHT_BROW] = right.hair * (1 - right.lens);
    // In hundredths: the last bits mean nothing.
    for (float& share : guessed) share = std::round(share * 100) / 100;
    return guessed;
}

}  // namespace zel
