#include "libzel/persons/brightLights.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "libzel/persons/subjectChoice.h"
#include "zellab/imageproc/masks/regionLabelling.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace zel {

namespace {

using zellab::Byte;
using zellab::ConstImageView;
using zellab::Plane;
using zellab::PlaneView;

constexpr int kBright = 228;      // levels of a light's brightness
constexpr int kDarkAround = 130;  // and the most of its surroundings' mean
constexpr int kLeastArea = 12, kMostArea = kLightsSide * kLightsSide / 25;  // samples
/// Mean share of a person up to which a light is nobody's. Ear rings have more.
constexpr float kNobody = 0.45f;
/// How far its glow and the ground around it reach, in its radii, and as many samples more.
constexpr float kGlow = 0.35f, kAround = 1.2f;
constexpr int kGlowRim = 2, kAroundRim = 6;

/// All of one size.
struct Samples {
    Plane<Byte> brightness{kLightsSide, kLightsSide}, depth{kLightsSide, kLightsSide};
    Plane<float> shares{kLightsSide, kLightsSide};
};

Samples samplesOf(ConstImageView picture, PlaneView<const float> shares, PlaneView<const Byte> depth) {
    Samples samples;
    zellab::RgbaImage small(kLightsSide, kLightsSide);
    scaleArgb(picture, small.view(), zellab::YuvFilter::box);
    scalePlane(depth, samples.depth.view(), zellab::YuvFilter::box);
    for (std::size_t i = 0; i < samples.brightness.size(); ++i) {
        const Byte* const p = small.data() + 4 * i;
        samples.brightness.data()[i] = static_cast<Byte>((77 * p[0] + 150 * p[1] + 29 * p[2]) / 256);
    }
    const auto place = [](int sample, int pixels) {
        return static_cast<int>((sample + 0.5) * pixels / kLightsSide);
    };
    for (int y = 0; y < kLightsSide; ++y)
        for (int x = 0; x < kLightsSide; ++x)
            samples.shares.row(y)[x] = shares.row(place(y, shares.height))[place(x, shares.width)];
    return samples;
}

/// One light, in a window with room around it.
class Light {
public:
    Light(const Samples& samples, const Plane<int>& labels, int label, const zellab::RegionBox& box)
        : m_samples(samples) {
        for (int y = box.top; y <= box.bottom; ++y)
            for (int x = box.left; x <= box.right; ++x)
                if (labels.row(y)[x] == label) {
                    ++m_area;
                    m_share += samples.shares.row(y)[x];
                }
        const float radius = std::sqrt(static_cast<float>(m_area) / 3.14159f);
        m_glow = static_cast<int>(kGlow * radius) + kGlowRim;
        m_around = static_cast<int>(kAround * radius) + kAroundRim;
        if (!isOfSize()) return;
        m_left = std::max(box.left - m_around, 0);
        m_top = std::max(box.top - m_around, 0);
        m_distance = Plane<int>(std::min(box.right + m_around, kLightsSide - 1) - m_left + 1,
                                std::min(box.bottom + m_around, kLightsSide - 1) - m_top + 1);
        measure(labels, label);
    }

    /// The ground's depth around it; none where it is no light of the ground.
    std::optional<int> depthAround() const {
        if (!isOfSize() || m_share > kNobody * static_cast<float>(m_area)) return std::nullopt;
        DepthMedian depth;
        int count = 0, brightness = 0;
        visit([&](int x, int y, int distance) {
            if (distance <= m_glow || distance > m_around || m_samples.shares.row(y)[x] >= kNobody) return;
            depth.add(m_samples.depth.row(y)[x]);
            brightness += m_samples.brightness.row(y)[x];
            ++count;
        });
        if (count < kLeastArea || brightness > kDarkAround * count) return std::nullopt;
        return depth.quarter();
    }

    void lower(PlaneView<Byte> caps, int depth) const {
        visit([&](int x, int y, int distance) {
            if (distance == 0 || (distance <= m_glow && m_samples.shares.row(y)[x] < kSomebody))
                caps.row(y)[x] = std::min(caps.row(y)[x], static_cast<Byte>(depth));
        });
    }

private:
    static constexpr float kSomebody = 0.6f;

    bool isOfSize() const { return m_area >= kLeastArea && m_area <= kMostArea; }

    template <typename Visit>
    void visit(const Visit& tell) const {
        for (int y = 0; y < m_distance.height(); ++y)
            for (int x = 0; x < m_distance.width(); ++x) tell(m_left + x, m_top + y, m_distance.row(y)[x]);
    }

    /// Steps to the light, diagonal ones as long as the others: down and right, then up and left.
    void measure(const Plane<int>& labels, int label) {
        const int width = m_distance.width(), height = m_distance.height();
        const auto at = [&](int x, int y) {
            return x >= 0 && y >= 0 && x < width && y < height ? m_distance.row(y)[x] : width + height;
        };
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                m_distance.row(y)[x] =
                    labels.row(m_top + y)[m_left + x] == label
                        ? 0
                        : 1 + std::min({at(x - 1, y - 1), at(x, y - 1), at(x + 1, y - 1), at(x - 1, y)});
        for (int y = height - 1; y >= 0; --y)
            for (int x = width - 1; x >= 0; --x)
                m_distance.row(y)[x] =
                    std::min(m_distance.row(y)[x],
                             1 + std::min({at(x + 1, y + 1), at(x, y + 1), at(x - 1, y + 1), at(x + 1, y)}));
    }

    const Samples& m_samples;
    int m_area = 0, m_glow = 0, m_around = 0, m_left = 0, m_top = 0;
    float m_share = 0;
    Plane<int> m_distance;
};

}  // namespace

Plane<Byte> depthOfLights(ConstImageView picture, PlaneView<const float> shares,
                          PlaneView<const Byte> depth) {
    const Samples samples = samplesOf(picture, shares, depth);
    Plane<Byte> bright(kLightsSide, kLightsSide), caps(kLightsSide, kLightsSide);
    std::fill_n(caps.data(), caps.size(), Byte{255});
    for (std::size_t i = 0; i < bright.size(); ++i)
        bright.data()[i] = samples.brightness.data()[i] >= kBright ? 255 : 0;
    Plane<int> labels(kLightsSide, kLightsSide);
    const auto boxes = zellab::LabelConnectedRuns(std::as_const(bright).view(), labels.view());
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        const Light light(samples, labels, static_cast<int>(i) + 1, boxes[i]);
        if (const auto around = light.depthAround()) light.lower(caps.view(), *around);
    }
    return caps;
}

}  // namespace zel
