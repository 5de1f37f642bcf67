#include "zellab/imageproc/blur/stackBlurLanes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace zellab {

namespace {

/// A sum beyond 64 bits: exact modulo 2^64, and roughly as a whole. A line of n samples gives n roundings of the rough
/// sum, each at most 2^16 where the sum stays below 2^70: together below a hundredth of the divisors that ask for it.
struct WideSum {
    std::uint64_t low = 0;
    double rough = 0;

    WideSum() = default;
    WideSum(std::int64_t number)  // NOLINT(google-explicit-constructor): it stands where numbers stand
        : low(static_cast<std::uint64_t>(number)), rough(static_cast<double>(number)) {}
    WideSum& operator+=(const WideSum& other) {
        low += other.low;
        rough += other.rough;
        return *this;
    }
    friend WideSum operator+(WideSum a, const WideSum& b) { return a += b; }
    friend WideSum operator*(WideSum a, const WideSum& b) {
        a.low *= b.low;
        a.rough *= b.rough;
        return a;
    }
};

/// Divides sums of at most 24 bits.
struct SingleDivider {
    explicit SingleDivider(std::int64_t reach) : reciprocal(reciprocalFromAbove(static_cast<int>(reach))) {}
    Byte operator()(std::int32_t sum) const {
        return static_cast<Byte>(static_cast<std::int32_t>(static_cast<float>(sum) * reciprocal));
    }
    float reciprocal;
};

/// Divides sums of at most 31 bits: an estimate that is never above, and the remainder's verdict.
struct CorrectedDivider {
    explicit CorrectedDivider(std::int64_t reach)
        : reciprocal(reciprocalFromBelow(static_cast<int>(reach))),
          divisor(static_cast<std::int32_t>(reach * reach)) {}
    Byte operator()(std::int32_t sum) const {
        const auto estimate = static_cast<std::int32_t>(static_cast<float>(sum) * reciprocal);
        return static_cast<Byte>(estimate + (sum - estimate * divisor >= divisor ? 1 : 0));
    }
    float reciprocal;
    std::int32_t divisor;
};

/// Divides sums of at most 63 bits: the same in double precision.
struct LongDivider {
    explicit LongDivider(std::int64_t reach)
        : reciprocal((1.0 - 0x1p-40) / (static_cast<double>(reach) * static_cast<double>(reach))),
          divisor(reach * reach) {}
    Byte operator()(std::int64_t sum) const {
        const auto estimate = static_cast<int>(static_cast<double>(sum) * reciprocal);
        return static_cast<Byte>(estimate + (sum - estimate * divisor >= divisor ? 1 : 0));
    }
    double reciprocal;
    std::int64_t divisor;
};

/// Divides wide sums: the rough one tells the quotient or one less, and the remainder, which fits 64 bits, which.
struct WideDivider {
    explicit WideDivider(std::int64_t reach)
        : reciprocal(1.0 / (static_cast<double>(reach) * static_cast<double>(reach))),
          divisor(static_cast<std::uint64_t>(reach * reach)) {}
    Byte operator()(const WideSum& sum) const {
        constexpr double kBelow = 1.0 / 64;  // more than the rough sum may be off
        const auto estimate = static_cast<unsigned>(std::max(sum.rough * reciprocal - kBelow, 0.0));
        return static_cast<Byte>(estimate + (sum.low - estimate * divisor >= divisor ? 1 : 0));
    }
    double reciprocal;
    std::uint64_t divisor;
};

/// Written so that the compiler turns the loops over a group into vector code.
template <typename Sum, typename Divider>
class PlainLanes final : public LaneBlur {
public:
    explicit PlainLanes(const LaneBlurSpec& settings)
        : m_groups(static_cast<std::size_t>(settings.groups)),
          m_divider(std::int64_t{settings.radius} + 1),
          m_radius(settings.radius) {
        for (int lane = 0; lane < kLaneGroup; ++lane)
            m_kept[lane] = settings.keepAlpha && lane % 4 == 3 ? 255 : 0;
    }

    void begin(const std::vector<const Byte*>& first) override {
        std::size_t offset = 0;
        for (Group& group : m_groups) {
            group = Group{};
            for (std::size_t i = 1; i < first.size(); ++i)
                for (int lane = 0; lane < kLaneGroup; ++lane) {
                    group.slope[lane] += first[i][offset + lane];
                    group.sum[lane] += group.slope[lane];
                }
            finishBegin(group, first.front() + offset, first.back() + offset,
                        m_radius - static_cast<std::int64_t>(first.size() - 1));
            offset += kLaneGroup;
        }
    }

    void advance(const Taps& taps, Byte* out) override {
        std::size_t offset = 0;
        for (Group& group : m_groups) {
            for (int i = 0; i < taps.count; ++i)
                step(group, taps.enter[i] + offset, taps.centre[i] + offset, taps.leave[i] + offset,
                     out + m_groups.size() * kLaneGroup * static_cast<std::size_t>(i) + offset);
            offset += kLaneGroup;
        }
    }

private:
    struct Group {
        Sum sum[kLaneGroup];
        Sum slope[kLaneGroup];
    };

    /// Adds the repeats of both end samples: `beyond` of the last one, radius + 1 of position 0.
    void finishBegin(Group& group, const Byte* start, const Byte* last, std::int64_t beyond) const {
        const auto triangle = static_cast<Sum>(beyond * (beyond + 1) / 2);
        const auto startWeight =
            static_cast<Sum>((std::int64_t{m_radius} + 1) * (std::int64_t{m_radius} + 2) / 2);
        const auto repeats = static_cast<Sum>(beyond);
        for (int lane = 0; lane < kLaneGroup; ++lane) {
            group.sum[lane] +=
                repeats * group.slope[lane] + triangle * last[lane] + startWeight * start[lane];
            group.slope[lane] += static_cast<Sum>(beyond * last[lane] - std::int64_t{m_radius} * start[lane]);
        }
    }

    void step(Group& group, const Byte* enter, const Byte* centre, const Byte* leave, Byte* out) const {
        for (int lane = 0; lane < kLaneGroup; ++lane) {
            const Byte quotient = m_divider(group.sum[lane]);
            out[lane] = static_cast<Byte>((quotient & ~m_kept[lane]) | (centre[lane] & m_kept[lane]));
            group.slope[lane] += enter[lane] - 2 * centre[lane] + leave[lane];
            group.sum[lane] += group.slope[lane];
        }
    }

    std::vector<Group> m_groups;
    Divider m_divider;
    int m_radius;
    Byte m_kept[kLaneGroup];
};

}  // namespace

float reciprocalFromAbove(int reach) {
    const double exact = 1.0 / (static_cast<double>(reach) * reach);
    const auto nearest = static_cast<float>(exact);
    return nearest < exact ? std::nextafter(nearest, 1.0f) : nearest;
}

float reciprocalFromBelow(int reach) {
    return static_cast<float>((1.0 - 0x1p-21) / (static_cast<double>(reach) * reach));
}

std::unique_ptr<LaneBlur> makeLaneBlur(const LaneBlurSpec& settings) {
    // Compared before 1 is added, which the largest radius would not survive.
    if (settings.radius >= kLast64BitReach)
        return std::make_unique<PlainLanes<WideSum, WideDivider>>(settings);
    if (settings.radius >= kLast32BitReach)
        return std::make_unique<PlainLanes<std::int64_t, LongDivider>>(settings);
    if (settings.simd == platform::SimdLevel::avx2) return makeAvx2LaneBlur(settings);
    if (settings.radius >= kLastSingleReach)
        return std::make_unique<PlainLanes<std::int32_t, CorrectedDivider>>(settings);
    return std::make_unique<PlainLanes<std::int32_t, SingleDivider>>(settings);
}

}  // namespace zellab
