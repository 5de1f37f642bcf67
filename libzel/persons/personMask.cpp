#include "libzel/persons/personMask.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "CrossPlateform/platform_win/stb_image_util/alphaFlatten.h"
#include "libzel/networks/networkFolder.h"
#include "libzel/persons/brightLights.h"
#include "libzel/persons/personNetwork.h"
#include "libzel/persons/strayHair.h"
#include "libzel/persons/subjectChoice.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/core/pixelMath.h"
#include "zellab/imageproc/edgeaware/guidedFilterPlane.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace zel {

namespace {

using zellab::Byte;
using zellab::ConstImageView;
using zellab::Plane;
using zellab::PlaneView;
using zellab::RgbaImage;
using zellab::Vector2f;

/// A face's person is looked at in a square of this many sizes of the face, whose middle lies one size below the
/// face's. The face is measured with its forehead: FACES.json ends at the brows.
constexpr float kSquareOverFace = 4.5f, kForehead = 1.3f;
/// Only squares below that share of the picture's shorter side: who fills the picture is seen best as a whole.
constexpr float kLargestSquare = 0.85f;
constexpr std::size_t kMostSquares = 16;

/// Of the guided filter that draws the mask's edges to the picture's: the windows' reach as a share of the longer side,
/// and the deviation of colours that passes for noise.
constexpr float kGuideReach = 0.015f, kGuideEpsilon = 0.02f;
/// Pixels a side above which the filter's statistics are taken on a smaller copy.
constexpr float kGuideSide = 512;

/// The picture on white, at most kMaskSide pixels a side.
RgbaImage smallCopy(ConstImageView picture) {
    const double scale = std::min(1.0, double{kMaskSide} / std::max(picture.width, picture.height));
    const auto scaled = [&](int side) { return std::max(1, static_cast<int>(std::lround(side * scale))); };
    RgbaImage copy(scaled(picture.width), scaled(picture.height));
    if (!scaleArgb(picture, copy.view(), zellab::YuvFilter::box)) return {};
    flattenOntoWhite(copy.view(), copy.view());
    return copy;
}

std::vector<TurnedSquare> closerLooks(const FaceSet& faces, int width, int height) {
    std::vector<TurnedSquare> squares;
    for (const Face& face : faces.faces) {
        const float w = face.rect[2] * static_cast<float>(width),
                    h = face.rect[3] * static_cast<float>(height);
        const float size = kForehead * std::max(w, h);
        const Vector2f middle{face.rect[0] * static_cast<float>(width) + 0.5f * w,
                              face.rect[1] * static_cast<float>(height) + 0.5f * h};
        const TurnedSquare square{{middle.x, middle.y + size}, kSquareOverFace * size, 0};
        if (square.sound() && square.side < kLargestSquare * static_cast<float>(std::min(width, height)))
            squares.push_back(square);
    }
    if (squares.size() > kMostSquares) {
        std::stable_sort(squares.begin(), squares.end(),
                         [](const auto& a, const auto& b) { return a.side > b.side; });
        squares.resize(kMostSquares);
    }
    return squares;
}

/// The network's shares are soft over a wide rim: who is a person rather than not is one here.
float decided(float share) {
    constexpr float kNobody = 0.15f, kSomebody = 0.7f;
    return std::clamp((share - kNobody) / (kSomebody - kNobody), 0.0f, 1.0f);
}

/// The most that the mask may be, whatever the colour: a lamp beside a face may have the face's.
float possible(float share) {
    constexpr float kNobody = 0.03f, kPerhaps = 0.18f;
    return std::clamp((share - kNobody) / (kPerhaps - kNobody), 0.0f, 1.0f);
}

/// The mask with the picture's edges.
Mask refined(PlaneView<const float> shares, ConstImageView picture) {
    Mask mask{shares.width, shares.height, {}};
    mask.samples.resize(zellab::sampleCount(shares.width, shares.height));
    const PlaneView<Byte> bytes{mask.samples.data(), mask.width, mask.height};
    zellab::parallelRows(shares.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < shares.width; ++x)
                bytes.row(y)[x] = zellab::truncateToByte(decided(shares.row(y)[x]) * 255 + 0.5f);
    });
    const auto side = static_cast<float>(std::max(shares.width, shares.height));
    const float scale = std::max(1.0f, std::round(side / kGuideSide));
    const int radius = std::max(1, static_cast<int>(std::lround(kGuideReach * side / scale)));
    GuidedFilterPlane(bytes, picture, radius, kGuideEpsilon, scale);
    zellab::parallelRows(shares.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < shares.width; ++x) {
                Byte& own = bytes.row(y)[x];
                own = std::min(own, zellab::truncateToByte(possible(shares.row(y)[x]) * 255 + 0.5f));
            }
    });
    return mask;
}

/// A lamp's shares are unsure, and its depth, which would decide, is wrong.
void dropLights(PlaneView<float> shares, PlaneView<const Byte> lights) {
    Plane<Byte> dark(lights.width, lights.height), scaled(shares.width, shares.height);
    for (int y = 0; y < lights.height; ++y)
        for (int x = 0; x < lights.width; ++x) dark.row(y)[x] = lights.row(y)[x] == 255 ? 255 : 0;
    if (!scalePlane(std::as_const(dark).view(), scaled.view(), zellab::YuvFilter::bilinear)) return;
    for (int y = 0; y < shares.height; ++y)
        for (int x = 0; x < shares.width; ++x) shares.row(y)[x] *= static_cast<float>(scaled.row(y)[x]) / 255;
}

/// Runs work(copy, shares), from a look at all people of the picture to a result.
template <typename Work>
auto withShares(ConstImageView picture, const FaceSet& faces, const std::string& assets, std::string& reason,
                const Work& work) -> decltype(work(RgbaImage(), Plane<float>())) {
    const std::string folder = networkFolder(assets);
    try {
        const auto persons = folder.empty() ? std::nullopt : PersonNetwork::load(folder, reason);
        if (!persons) {
            const std::string hint = networkFolderHint(folder);
            reason += (reason.empty() ? "" : "; ") + hint;
            return std::nullopt;
        }
        const RgbaImage copy = smallCopy(picture);
        return work(copy, persons->look(copy.view(), closerLooks(faces, copy.width(), copy.height())));
    } catch (const NetworkFailure& failure) {
        reason = failure.what();
        return std::nullopt;
    }
}

}  // namespace

FaceSet facesOf(const Subject& subject, const FaceSet& faces) {
    FaceSet own{faces.width, faces.height, {}};
    for (std::size_t i = 0; i < faces.faces.size(); ++i)
        if (subject.ofFaces[i]) own.faces.push_back(faces.faces[i]);
    return own;
}

std::optional<Mask> personMask(ConstImageView picture, const FaceSet* faces, const std::string& assets,
                               std::string& reason) {
    return withShares(picture, faces ? *faces : FaceSet(), assets, reason,
                      [&](const RgbaImage& copy, Plane<float> shares) -> std::optional<Mask> {
                          if (faces) keepPeopleOf(*faces, shares.view());
                          return refined(std::as_const(shares).view(), copy.view());
                      });
}

std::optional<Subject> findSubject(ConstImageView picture, const FaceSet& faces, PlaneView<const Byte> depth,
                                   std::optional<Vector2f> focus, const std::string& assets,
                                   std::string& reason) {
    return withShares(
        picture, faces, assets, reason,
        [&](const RgbaImage& copy, Plane<float> shares) -> std::optional<Subject> {
            Subject subject;
            subject.ofFaces = subjectFaces(faces, depth, focus);
            subject.lights = depthOfLights(copy.view(), std::as_const(shares).view(), depth);
            keepSubject(shares.view(), faces, subject.ofFaces, depth, focus);
            if (const FaceSet own = facesOf(subject, faces); !own.faces.empty()) {
                settleByDepth(shares.view(), own, depth);
                dropForeground(shares.view(), own, depth);
            }
            dropLights(shares.view(), std::as_const(subject.lights).view());
            const float* const end = shares.data() + shares.size();
            if (std::none_of(std::as_const(shares).data(), end, [](float s) { return s >= 0.5f; })) {
                reason = "nobody is in the focus";
                return std::nullopt;
            }
            subject.mask = refined(std::as_const(shares).view(), copy.view());
            subject.rim = subject.mask;
            addStrayHair(subject.rim, facesOf(subject, faces), copy.view());
            return subject;
        });
}

}  // namespace zel
