#include <gtest/gtest.h>

#include "reference/slowStackBlur.h"
#include "support/everyMachine.h"
#include "zellab/imageproc/blur/stackBlur.h"

namespace {

using namespace zeltest;

/// One member of the blur family beside its slow form; both work in place.
struct Member {
    const char* name;
    int channels;
    bool limitsRadius;
    void (*engine)(Bytes&, Size size, int radius);
    void (*slowForm)(Bytes&, int width, int height, int radius);
};

const Member kMembers[] = {
    {"StackBlurRGBA", 4, true, [](Bytes& p, Size s, int r) { zellab::StackBlurRGBA(rgbaView(p, s), r); },
     [](Bytes& p, int w, int h, int r) { slow::stackBlurEx(p, w, h, w * 4, r); }},
    {"StackBlurGray", 1, true, [](Bytes& p, Size s, int r) { zellab::StackBlurGray(planeView(p, s), r); },
     [](Bytes& p, int w, int h, int r) { slow::stackBlurEx(p, w, h, w, r); }},
    {"StackBlurAllChannels", 4, false,
     [](Bytes& p, Size s, int r) { zellab::StackBlurAllChannels(rgbaView(p, s), r); },
     slow::stackBlurAllChannels},
    {"MaskStackBlur", 4, false, [](Bytes& p, Size s, int r) { zellab::MaskStackBlur(rgbaView(p, s), r); },
     slow::maskStackBlur},
};

void compare(const Member& member, Size size, int radius, const Bytes& picture) {
    compareWithSlow(
        size, picture, [&](Bytes& p) { member.slowForm(p, size.width, size.height, radius); },
        [&](Bytes& p) { member.engine(p, size, radius); }, member.name, radius);
}

class StackBlurMatchesSlow : public testing::TestWithParam<Member> {};

TEST_P(StackBlurMatchesSlow, OnAwkwardSizesAndRadiiAroundTheLimit) {
    const Member& member = GetParam();
    for (const Size size : kAwkwardSizes) {
        const Bytes picture = randomBytes(static_cast<std::size_t>(size.pixels() * member.channels), 11u);
        const int limit = std::min(size.width, size.height) / 2 / 2;
        for (const int radius : {0, 1, 2, 3, limit, limit + 1, 40, 300})
            compare(member, size, radius, picture);
        if (member.limitsRadius) compare(member, size, -7, picture);
    }
}

// The sizes at which the work is first shared, the plane's halves among them; a plane of five rows is the
// smallest that would be halved and is lower than the overlap that halves need. The last two are blurred in
// several bands of rows, by one worker even as a plane.
TEST_P(StackBlurMatchesSlow, OnSizesAroundTheWorkersLimits) {
    const Member& member = GetParam();
    for (const Size size : {Size{110, 110}, Size{221, 56}, Size{190, 191}, Size{7301, 5}, Size{6, 6100},
                            Size{900, 700}, Size{1100, 900}}) {
        const Bytes picture = randomBytes(static_cast<std::size_t>(size.pixels() * member.channels), 12u);
        for (const int radius : {1, 14}) compare(member, size, radius, picture);
    }
}

// The hardest sums for whatever replaces a division: the last sample's window holds one sample that is less
// by one, with weight one, so that its sum is one below a multiple of the divisor. At the widest radii sums
// come close to the end of 32 bits and pass it.
TEST(UnlimitedStackBlurMatchesSlow, OnSumsAroundAMultipleOfTheDivisor) {
    for (const Member& member : kMembers) {
        if (member.limitsRadius) continue;  // the limit keeps such radii from small pictures
        for (const int radius : {1, 2, 20, 127, 158, 159, 160, 161, 700, 2899, 2900, 2901})
            for (int value = 0; value < 255 && !HasFailure(); value += radius < 130   ? 2
                                                                       : radius < 200 ? 31
                                                                                      : 254) {
                Bytes line(static_cast<std::size_t>(4 * (radius + 1)), static_cast<unsigned char>(value + 1));
                std::fill_n(line.begin(), 4, static_cast<unsigned char>(value));
                compare(member, {radius + 1, 1}, radius, line);
            }
    }
}

INSTANTIATE_TEST_SUITE_P(Members, StackBlurMatchesSlow, testing::ValuesIn(kMembers),
                         [](const auto& member) { return "member" + std::to_string(member.index); });

}  // namespace
