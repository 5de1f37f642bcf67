#include <gtest/gtest.h>

#include <random>

#include "reference/slowScale.h"
#include "support/everyMachine.h"
#include "support/views.h"
#include "zellab/imageproc/resample/imageResampler.h"
#include "zellab/imageproc/sfdsp/scaleBilinear.h"

namespace {

using namespace zeltest;

struct Scaling {
    Size from, to;
};

/// Sides of 1 to 70 pixels; with `enlarging` no side shrinks. The last cases are tall enough to be shared.
std::vector<Scaling> scalings(bool enlarging) {
    std::vector<Scaling> all = {
        {{1, 1}, {5, 3}}, {{2, 1}, {7, 4}}, {{1, 2}, {1, 9}}, {{2, 2}, {3, 2}}, {{10, 8}, {25, 20}}};
    if (!enlarging)
        all.insert(all.end(), {{{9, 7}, {1, 1}},
                               {{70, 1}, {3, 8}},
                               {{3, 70}, {70, 3}},
                               {{300, 5}, {2, 640}},
                               {{40, 32}, {15, 12}}});
    std::mt19937 random(71);
    const auto side = [&](int least) {
        return least + static_cast<int>(random() % static_cast<unsigned>(71 - least));
    };
    while (all.size() < 120) {
        const Size from{side(1), side(1)};
        const Size to{side(enlarging ? from.width : 1), side(enlarging ? from.height : 1)};
        if (from.width != to.width || from.height != to.height) all.push_back({from, to});
    }
    all.push_back({{61, 113}, {118, 227}});
    return all;
}

/// Holds an engine to `slowForm` on one and on four channels.
template <typename SlowForm, typename Engine>
void compareScalers(bool enlarging, const SlowForm& slowForm, const Engine& engine) {
    for (const Scaling& s : scalings(enlarging))
        for (const int channels : {1, 4}) {
            SCOPED_TRACE(testing::Message() << s.from.width << " by " << s.from.height << " to " << s.to.width
                                            << " by " << s.to.height << ", channels " << channels);
            const Bytes source =
                randomBytes(static_cast<std::size_t>(s.from.width * s.from.height * channels), 72);
            const Bytes expected =
                slowForm(source, s.from.width, s.from.height, s.to.width, s.to.height, channels);
            onEveryMachine([&] {
                Bytes actual(expected.size(), 66);
                ASSERT_TRUE(engine(source.data(), s.from, actual.data(), s.to, channels));
                ASSERT_TRUE(sameSamples(expected, actual, s.to.width * channels));
            });
            ASSERT_FALSE(testing::Test::HasFailure());
        }
}

/// An engine that compareScalers can call, from scale(from, to) on views.
template <typename Scale>
auto onViews(const Scale& scale) {
    return [=](const unsigned char* source, Size from, unsigned char* target, Size to, int channels) {
        return withViews(source, from.width, from.height, target, to.width, to.height, channels, scale);
    };
}

TEST(ScaleBilinearMatchesSlow, BothWays) {
    compareScalers(false, slow::scaleBilinear,
                   onViews([](auto from, auto to) { return zellab::ScaleBilinearThreaded(from, to); }));
}

auto resample(int quality) {
    return onViews([=](auto from, auto to) { return zellab::ImageResampler().Resize(from, to, quality); });
}

TEST(ImageResamplerMatchesSlow, WithTwoTapsBothWays) {
    compareScalers(
        false, [](auto&&... a) { return slow::filterResize(a..., slow::twoTaps); }, resample(0));
}

TEST(ImageResamplerMatchesSlow, WithFourTapsEnlarging) {
    compareScalers(
        true, [](auto&&... a) { return slow::filterResize(a..., slow::fourTaps); }, resample(3));
}

}  // namespace
