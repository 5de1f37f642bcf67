#include "cli/files/vips/colourSpace.h"

#include <lcms2.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>

#include "cli/failure.h"

namespace zelcli {

namespace {

/// Profiles that call themselves sRGB differ by a level or two in their rounding.
constexpr int kSameColour = 2;
constexpr int kBlackPoint = cmsFLAGS_BLACKPOINTCOMPENSATION;

struct ProfileCloser {
    void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, ProfileCloser>;

struct TransformCloser {
    void operator()(void* transform) const { cmsDeleteTransform(transform); }
};
using Transform = std::unique_ptr<void, TransformCloser>;

Profile openProfile(std::span<const unsigned char> bytes) {
    return Profile(cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())));
}

/// Null where the profiles do not fit.
Transform makeTransform(void* from, void* to) {
    if (!from || !to) return nullptr;
    return Transform(cmsCreateTransform(from, TYPE_RGBA_8, to, TYPE_RGBA_8, INTENT_RELATIVE_COLORIMETRIC,
                                        kBlackPoint | cmsFLAGS_COPY_ALPHA | cmsFLAGS_NOCACHE));
}

Transform toSrgbFrom(std::span<const unsigned char> iccProfile) {
    const Profile profile = openProfile(iccProfile);
    if (!profile || cmsGetColorSpace(profile.get()) != cmsSigRgbData) return nullptr;
    return makeTransform(profile.get(), Profile(cmsCreate_sRGBProfile()).get());
}

std::vector<unsigned char> transformed(const Transform& transform, std::span<const unsigned char> rgba) {
    constexpr std::size_t kPiece = std::size_t{1} << 20;  // pixels a call: it takes 32 bits
    std::vector<unsigned char> out(rgba.begin(), rgba.end());
    for (std::size_t at = 0; at < rgba.size() / 4; at += kPiece)
        cmsDoTransform(transform.get(), rgba.data() + 4 * at, out.data() + 4 * at,
                       static_cast<cmsUInt32Number>(std::min(kPiece, rgba.size() / 4 - at)));
    return out;
}

/// How much of what sRGB could not show of a stored pixel goes back into it: all where the pixel is as it was, the
/// less the more it was changed, nothing where it became another colour.
constexpr int kWholeShare = 48;
int shareOfRest(const unsigned char* now, const unsigned char* seen) {
    int change = 0;
    for (int c = 0; c < 3; ++c) change = std::max(change, std::abs(now[c] - seen[c]));
    return std::max(0, kWholeShare - change);
}

}  // namespace

bool isWide(std::span<const unsigned char> iccProfile) {
    const Transform transform = toSrgbFrom(iccProfile);
    if (!transform) return false;
    constexpr int kSteps = 5;
    std::vector<unsigned char> colours;
    for (int i = 0; i < kSteps * kSteps * kSteps; ++i)
        for (const int level : {i % kSteps, i / kSteps % kSteps, i / kSteps / kSteps, kSteps - 1})
            colours.push_back(static_cast<unsigned char>(level * 255 / (kSteps - 1)));
    const std::vector<unsigned char> seen = transformed(transform, colours);
    return !std::equal(colours.begin(), colours.end(), seen.begin(),
                       [](int a, int b) { return std::abs(a - b) <= kSameColour; });
}

std::vector<unsigned char> toSrgb(std::span<const unsigned char> rgba,
                                  std::span<const unsigned char> iccProfile) {
    const Transform transform = toSrgbFrom(iccProfile);
    if (!transform) throw Failure("its colour profile cannot be used");
    return transformed(transform, rgba);
}

std::vector<unsigned char> inStoredColours(const Image& image) {
    const WideColours& wide = *image.origin->wide;
    const Profile profile = openProfile(image.origin->metadata.iccProfile);
    const Transform transform = makeTransform(Profile(cmsCreate_sRGBProfile()).get(), profile.get());
    if (!transform) throw Failure("its colour profile cannot be used for writing");
    std::vector<unsigned char> out = transformed(transform, image.rgba);
    const std::vector<unsigned char> before = transformed(transform, wide.seen);
    for (std::size_t i = 0; i < out.size(); i += 4) {
        const int share = shareOfRest(image.rgba.data() + i, wide.seen.data() + i);
        for (std::size_t c = 0; c < 3; ++c)
            out[i + c] = static_cast<unsigned char>(
                std::clamp(out[i + c] + share * (wide.stored[i + c] - before[i + c]) / kWholeShare, 0, 255));
    }
    return out;
}

}  // namespace zelcli
