#include "libzel/persons/strayHair.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <utility>
#include <vector>

#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/masks/maskMorphology.h"
#include "zellab/imageproc/masks/regionLabelling.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace zel {

namespace {

using zellab::Byte;
using zellab::ConstImageView;
using zellab::Plane;
using zellab::PlaneView;
using zellab::RgbaImage;

/// Side of the grid on which the ground is told; cells from one of which its mean is taken.
constexpr int kSide = 384, kReach = 20;
constexpr Byte kGround = 8, kPerson = 128;  // of the mask: at most, at least
/// Levels from the ground's mean up to which a cell is ground; the most cells beyond that, and the deviation of the rest, of
/// plain ground.
constexpr int kAlike = 24;
constexpr double kMostUnlike = 0.35, kPlainDeviation = 10;
constexpr double kLeastGround = 0.1;  // share of the window
/// Levels from the ground's from which on something stands out, and where it does so wholly.
constexpr int kFaint = 14, kClear = 40;
constexpr int kConnects = 90, kPlain = 250;  // of 255: the scaler rounds
constexpr float kThickest = 0.02f;           // of the longer side: thicker things are no strands
/// Around a face, in its sizes: to each side of its middle, above and below.
constexpr float kAside = 1.7f, kAbove = 1.3f, kBelow = 2.2f;

/// Sums over windows of the grid, of any number of values a cell.
template <std::size_t kValues>
class WindowSums {
public:
    using Values = std::array<double, kValues>;

    template <typename ValuesAt>
    explicit WindowSums(const ValuesAt& at) : m_sums(std::size_t{kSide + 1} * (kSide + 1)) {
        for (int y = 0; y < kSide; ++y) {
            Values row{};
            for (int x = 0; x < kSide; ++x) {
                const Values here = at(x, y);
                for (std::size_t i = 0; i < kValues; ++i) {
                    row[i] += here[i];
                    sum(x + 1, y + 1)[i] = sum(x + 1, y)[i] + row[i];
                }
            }
        }
    }
    Values around(int x, int y) const {
        const int left = std::max(x - kReach, 0), right = std::min(x + kReach + 1, kSide);
        const int top = std::max(y - kReach, 0), bottom = std::min(y + kReach + 1, kSide);
        Values values;
        for (std::size_t i = 0; i < kValues; ++i)
            values[i] = sum(right, bottom)[i] - sum(left, bottom)[i] - sum(right, top)[i] + sum(left, top)[i];
        return values;
    }

private:
    Values& sum(int x, int y) {
        return m_sums[static_cast<std::size_t>(y) * (kSide + 1) + static_cast<std::size_t>(x)];
    }
    const Values& sum(int x, int y) const { return const_cast<WindowSums*>(this)->sum(x, y); }

    std::vector<Values> m_sums;
};

int apart(const Byte* a, const Byte* b) {
    return std::max({std::abs(a[0] - b[0]), std::abs(a[1] - b[1]), std::abs(a[2] - b[2])});
}

/// The ground's colour on the grid; its alpha is 255 where it is plain.
RgbaImage groundOf(const Mask& mask, ConstImageView picture) {
    RgbaImage small(kSide, kSide), ground(kSide, kSide);
    Plane<Byte> people(kSide, kSide);
    scaleArgb(picture, small.view(), zellab::YuvFilter::box);
    scalePlane(PlaneView<const Byte>(mask.samples.data(), mask.width, mask.height), people.view(),
               zellab::YuvFilter::box);
    const auto cell = [&](int x, int y) { return small.data() + 4 * (std::ptrdiff_t{kSide} * y + x); };
    const auto isGround = [&](int x, int y) { return people.row(y)[x] <= kGround; };
    const WindowSums<4> all([&](int x, int y) {
        const Byte* const p = cell(x, y);
        return isGround(x, y) ? std::array<double, 4>{double(p[0]), double(p[1]), double(p[2]), 1}
                              : std::array<double, 4>{};
    });
    const auto meanAt = [](const auto& sums, int x, int y, Byte* out) {
        const auto s = sums.around(x, y);
        for (std::size_t c = 0; c < 3; ++c) out[c] = s[3] > 0 ? static_cast<Byte>(s[c] / s[3] + 0.5) : 0;
        return s;
    };
    const WindowSums<5> alike([&](int x, int y) {
        Byte mean[3];
        const Byte* const p = cell(x, y);
        meanAt(all, x, y, mean);
        if (!isGround(x, y) || apart(p, mean) > kAlike) return std::array<double, 5>{};
        const double luma = (p[0] + 2.0 * p[1] + p[2]) / 4;
        return std::array<double, 5>{double(p[0]), double(p[1]), double(p[2]), 1, luma * luma};
    });
    constexpr double kCells = (2 * kReach + 1) * (2 * kReach + 1);
    for (int y = 0; y < kSide; ++y)
        for (int x = 0; x < kSide; ++x) {
            Byte* const out = ground.data() + 4 * (std::ptrdiff_t{kSide} * y + x);
            const auto s = meanAt(alike, x, y, out);
            const double count = all.around(x, y)[3];
            const double luma = (s[0] + 2 * s[1] + s[2]) / 4 / std::max(s[3], 1.0);
            const double variance = s[4] / std::max(s[3], 1.0) - luma * luma;
            const bool plain = count >= kLeastGround * kCells && s[3] >= (1 - kMostUnlike) * count &&
                               variance <= kPlainDeviation * kPlainDeviation;
            out[3] = plain ? 255 : 0;
        }
    return ground;
}

bool isBesideHead(const FaceSet& faces, float u, float v) {
    return std::any_of(faces.faces.begin(), faces.faces.end(), [&](const Face& face) {
        const float across = (u - face.rect[0]) / face.rect[2] - 0.5f;
        const float down = (v - face.rect[1]) / face.rect[3];
        return std::abs(across) < kAside && down > -kAbove && down < kBelow;
    });
}

}  // namespace

void addStrayHair(Mask& mask, const FaceSet& faces, ConstImageView picture) {
    if (faces.faces.empty()) return;
    const RgbaImage ground = groundOf(mask, picture);
    RgbaImage plain(mask.width, mask.height);
    scaleArgb(std::as_const(ground).view(), plain.view(), zellab::YuvFilter::bilinear);
    Plane<Byte> hair(mask.width, mask.height), joined(mask.width, mask.height),
        solid(mask.width, mask.height);
    const auto row = [&](int y) { return mask.samples.data() + zellab::sampleCount(mask.width, y); };
    zellab::parallelRows(mask.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < mask.width; ++x) {
                const Byte* const own = plain.view().row(y) + std::ptrdiff_t{4} * x;
                const float u = (static_cast<float>(x) + 0.5f) / static_cast<float>(mask.width);
                const float v = (static_cast<float>(y) + 0.5f) / static_cast<float>(mask.height);
                int strength = 0;
                if (own[3] >= kPlain && isBesideHead(faces, u, v)) {
                    const int out = apart(picture.row(y) + std::ptrdiff_t{4} * x, own);
                    strength = std::clamp((out - kFaint) * 255 / (kClear - kFaint), 0, 255);
                }
                hair.row(y)[x] = static_cast<Byte>(strength);
                solid.row(y)[x] = strength >= kConnects && row(y)[x] < kPerson ? 255 : 0;
            }
    });
    const int strand =
        std::max(1, static_cast<int>(std::lround(kThickest * std::max(mask.width, mask.height) / 2)));
    zellab::BoxMorphology(solid.view(), strand, false);
    zellab::BoxMorphology(solid.view(), strand + 1, true);
    for (int y = 0; y < mask.height; ++y)
        for (int x = 0; x < mask.width; ++x) {
            if (solid.row(y)[x]) hair.row(y)[x] = 0;
            joined.row(y)[x] = row(y)[x] >= kPerson || hair.row(y)[x] >= kConnects ? 255 : 0;
        }
    Plane<int> labels(mask.width, mask.height);
    std::vector<bool> ofPerson(LabelConnectedRuns(std::as_const(joined).view(), labels.view()).size() + 1);
    for (int y = 0; y < mask.height; ++y)
        for (int x = 0; x < mask.width; ++x)
            if (row(y)[x] >= kPerson) ofPerson[static_cast<std::size_t>(labels.row(y)[x])] = true;
    ofPerson[0] = false;
    for (int y = 0; y < mask.height; ++y)
        for (int x = 0; x < mask.width; ++x)
            if (ofPerson[static_cast<std::size_t>(labels.row(y)[x])])
                row(y)[x] = std::max(row(y)[x], hair.row(y)[x]);
}

}  // namespace zel
