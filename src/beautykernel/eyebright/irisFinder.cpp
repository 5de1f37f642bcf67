#include "beautykernel/eyebright/irisFinder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <vector>

#include "zellab/imageproc/blur/stackBlur.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/resample/imageResampler.h"

namespace zellab {

namespace {

/// The search runs on a cut-out of this height, so that its cost and its blur do not depend on the picture's.
constexpr int kWorkHeight = 100;
/// A cut-out wider than this many heights is no eye.
constexpr int kWidestEye = 20;
constexpr int kBlurRadius = 2;

/// Irises are much alike: a radius as a share of the eye's length, how far from it the search goes, and the
/// deviation at which the score, a share of the light level, loses kPriorLoss.
constexpr float kUsualRadius = 0.205f, kRadiusReach = 0.055f, kRadiusDeviation = 0.04f;
/// How far from the landmark the centre may lie, as a share of the eye's length, and its deviation.
constexpr float kCentreReach = 0.18f, kCentreDeviation = 0.14f;
constexpr float kPriorLoss = 0.03f;
/// By how much the white must be lighter than the iris, as a mean of both sides and a share of the cut-out's
/// light level. Synthetic eyes that are shut stay below 0.1, open ones begin at 0.16.
constexpr float kLeastContrast = 0.125f;
/// On photographs small, soft or shaded eyes fall below that. Where the eye is open, in light, and the iris stands
/// where the landmark says, to a share of the eye's length, less will do: in the mean, and on either side.
constexpr float kLeastContrastAtSeed = 0.065f, kLeastContrastOfSide = 0.03f;
constexpr float kAtSeed = 0.05f, kOpenGap = 0.18f;  // shares of the eye's length
constexpr int kLeastLight = 40;
/// Lashes and shadows make a circle far from the landmark that is hardly better than the one where it says.
constexpr float kFar = 0.08f, kHardlyBetter = 0.04f;
/// More contrast than this on one side says no more: lashes and the lids' corners can be very dark.
constexpr float kMostContrast = 0.5f;
/// The light level is the one that this share of the cut-out lies below.
constexpr float kLightShare = 0.9f;
/// Steps of the coarse search.
constexpr int kCoarse = 4;

/// The rim is sampled where lids seldom hide it: to the left and right, up to an angle that follows the gap.
constexpr int kAngles = 9;
constexpr float kDegree = std::numbers::pi_v<float> / 180.0f;
constexpr float kLeastAngle = 25.0f * kDegree, kMostAngle = 50.0f * kDegree;

struct Candidate {
    int x = 0, y = 0, radius = 0;
    float score = -1e9f;
    float left = 0.0f, right = 0.0f;  // contrast on either side

    float contrast() const { return (left + right) / 2.0f; }
};

class Search {
public:
    Search(PlaneView<const Byte> plane, const IrisSeed& seed, int light)
        : m_plane(plane),
          m_seed(seed),
          m_light(static_cast<float>(light)),
          m_leastRadius(std::max(static_cast<int>((kUsualRadius - kRadiusReach) * seed.length), 2)),
          m_mostRadius(
              std::max(static_cast<int>((kUsualRadius + kRadiusReach) * seed.length), m_leastRadius)),
          m_rim(std::max(static_cast<int>(0.04f * seed.length), 1)) {
        const float open = std::min(seed.gap / (2.0f * kUsualRadius * seed.length), 1.0f);
        const float widest = std::clamp(std::asin(open), kLeastAngle, kMostAngle);
        for (int i = 0; i < kAngles; ++i) {
            const float angle = widest * (2.0f * static_cast<float>(i) / (kAngles - 1) - 1.0f);
            m_cosine[static_cast<std::size_t>(i)] = std::cos(angle);
            m_sine[static_cast<std::size_t>(i)] = std::sin(angle);
        }
        m_left.resize(static_cast<std::size_t>(m_mostRadius + m_rim) + 1);
        m_right.resize(m_left.size());
    }

    /// @param reach  how far from the landmark, as a share of the eye's length
    Candidate run(float share) {
        const int reach = static_cast<int>(share * m_seed.length);
        const int x = static_cast<int>(m_seed.x), y = static_cast<int>(m_seed.y);
        Candidate best;
        scan(x, y, reach, kCoarse, best);
        scan(best.x, best.y, kCoarse - 1, 1, best);
        return best;
    }

private:
    void scan(int x, int y, int reach, int step, Candidate& best) {
        for (int dy = -reach; dy <= reach; dy += step)
            for (int dx = -reach; dx <= reach; dx += step)
                if (x + dx >= 0 && x + dx < m_plane.width && y + dy >= 0 && y + dy < m_plane.height)
                    tryCentre(x + dx, y + dy, best);
    }

    void tryCentre(int x, int y, Candidate& best) {
        profile(x, y, -1, m_left);
        profile(x, y, 1, m_right);
        const float dx = (static_cast<float>(x) - m_seed.x) / m_seed.length,
                    dy = (static_cast<float>(y) - m_seed.y) / m_seed.length;
        const float centreLoss = kPriorLoss * (dx * dx + dy * dy) / (kCentreDeviation * kCentreDeviation);
        for (int radius = m_leastRadius; radius <= m_mostRadius; ++radius) {
            const float left = std::min(contrast(m_left, radius), kMostContrast);
            const float right = std::min(contrast(m_right, radius), kMostContrast);
            const float off = (static_cast<float>(radius) / m_seed.length - kUsualRadius) / kRadiusDeviation;
            const float score = left + right - centreLoss - kPriorLoss * off * off;
            if (score > best.score) best = {x, y, radius, score, left, right};
        }
    }

    /// Sums along the radius of the mean level at each distance from the centre, on one side.
    void profile(int x, int y, int side, std::vector<float>& sums) const {
        float sum = 0.0f;
        sums[0] = 0.0f;
        for (std::size_t r = 1; r < sums.size(); ++r) {
            int levels = 0;
            for (std::size_t i = 0; i < kAngles; ++i) {
                const int px = x + side * static_cast<int>(m_cosine[i] * static_cast<float>(r) + 0.5f);
                const int py = y + static_cast<int>(std::floor(m_sine[i] * static_cast<float>(r) + 0.5f));
                levels +=
                    m_plane.row(std::clamp(py, 0, m_plane.height - 1))[std::clamp(px, 0, m_plane.width - 1)];
            }
            sums[r] = sum += static_cast<float>(levels) / kAngles;
        }
    }

    /// Mean just outside a radius less mean just inside, as a share of the light level.
    float contrast(const std::vector<float>& sums, int radius) const {
        const auto r = static_cast<std::size_t>(radius),
                   rim = static_cast<std::size_t>(std::min(m_rim, radius));
        return ((sums[r + rim] - sums[r]) - (sums[r] - sums[r - rim])) / (static_cast<float>(rim) * m_light);
    }

    PlaneView<const Byte> m_plane;
    IrisSeed m_seed;
    float m_light;
    int m_leastRadius, m_mostRadius;
    int m_rim;  // width of the rings that are compared
    std::array<float, kAngles> m_cosine{}, m_sine{};
    std::vector<float> m_left, m_right;
};

/// The level that kLightShare of the plane lies below, at least 1.
int lightLevel(const Plane<Byte>& plane) {
    std::array<std::size_t, 256> counts{};
    for (std::size_t i = 0; i < plane.size(); ++i) ++counts[plane.data()[i]];
    const auto wanted = static_cast<std::size_t>(kLightShare * static_cast<float>(plane.size()));
    std::size_t below = 0;
    int level = 0;
    while (level < 255 && (below += counts[static_cast<std::size_t>(level)]) < wanted) ++level;
    return std::max(level, 1);
}

/// Nothing where no iris is seen.
std::optional<Candidate> irisIn(PlaneView<const Byte> plane, const IrisSeed& seed, int light) {
    Search search(plane, seed, light);
    const Candidate best = search.run(kCentreReach);
    if (best.contrast() >= kLeastContrast) {
        const float off =
            std::hypot(static_cast<float>(best.x) - seed.x, static_cast<float>(best.y) - seed.y);
        if (off <= kFar * seed.length) return best;
        const Candidate near = search.run(kAtSeed);
        return near.score >= best.score - kHardlyBetter ? near : best;
    }
    if (!(seed.gap >= kOpenGap * seed.length) || light < kLeastLight) return std::nullopt;
    const Candidate near = search.run(kAtSeed);
    if (near.contrast() < kLeastContrastAtSeed || std::min(near.left, near.right) < kLeastContrastOfSide)
        return std::nullopt;
    return near;
}

/// Red: skin and whites are light in it, irises of every colour are dark.
Plane<Byte> redPlane(ConstImageView cutOut) {
    Plane<Byte> red(cutOut.width, cutOut.height);
    for (int y = 0; y < cutOut.height; ++y)
        for (int x = 0; x < cutOut.width; ++x) red.view().row(y)[x] = cutOut.at(x, y)[0];
    return red;
}

}  // namespace

Iris findIris(ConstImageView cutOut, const IrisSeed& seed) {
    if (!(seed.length >= 1.0f) || !(seed.gap >= 0.0f)) return {};
    if (!cutOut.valid() || cutOut.width / kWidestEye >= cutOut.height) return {};
    const float scale = static_cast<float>(kWorkHeight) / static_cast<float>(cutOut.height);
    const int width = std::max(static_cast<int>(static_cast<float>(cutOut.width) * scale + 0.5f), 1);
    const IrisSeed scaled = {seed.x * scale, seed.y * scale, seed.length * scale, seed.gap * scale};
    // Landmarks far from the cut-out say nothing, and a length beyond it is no eye's.
    if (!(scaled.x >= 0.0f && scaled.x < static_cast<float>(width))) return {};
    if (!(scaled.y >= 0.0f && scaled.y < static_cast<float>(kWorkHeight))) return {};
    if (!(scaled.length < 4.0f * static_cast<float>(width + kWorkHeight))) return {};

    const Plane<Byte> red = redPlane(cutOut);
    Plane<Byte> work(width, kWorkHeight);
    constexpr int kCubic = 3;
    if (!ImageResampler().Resize(red.view(), work.view(), kCubic)) return {};
    StackBlurGray(work.view(), kBlurRadius);
    const auto iris = irisIn(work.view(), scaled, lightLevel(work));
    if (!iris) return {};
    return {static_cast<float>(iris->x) / scale, static_cast<float>(iris->y) / scale,
            std::max(std::round(static_cast<float>(iris->radius) / scale), 1.0f)};
}

}  // namespace zellab
