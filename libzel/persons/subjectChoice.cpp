#include "libzel/persons/subjectChoice.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

#include "bokeh/focusDecision.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/masks/regionLabelling.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace zel {

namespace {

using zellab::Byte;
using zellab::Plane;
using zellab::PlaneView;
using zellab::Vector2f;

/// A face joins the subject's where these two together stay below 1: levels of depth between them, and halvings of
/// one's size to the other's.
constexpr float kDepthApart = 350, kHalvingsApart = 1;

/// People without a face join where they lie at most so many levels of depth behind the subject.
constexpr int kDepthBehind = 40;

/// Levels of depth behind the subject from which on depth speaks against whom the network is unsure of, and the most
/// by which that moves a share.
constexpr int kFarBehind = 80;
constexpr float kDepthSays = 0.3f;

/// Longest side of the grid on which people are told from one another.
constexpr int kGridSide = 192;

/// From this share on a place is somebody's.
constexpr float kSomebody = 0.5f;

/// Below a face lies its person: so many times as far down counts as much as beside it.
constexpr float kDownwards = 4;
/// Levels of depth that part two people as much as a face's size between them.
constexpr float kDepthPerFace = 32;

/// Cells around people who are dropped that go with them, since their outline is soft.
constexpr int kSoftCells = 3;

Vector2f middleOf(const Face& face) {
    return {face.rect[0] + 0.5f * face.rect[2], face.rect[1] + 0.5f * face.rect[3]};
}

/// In pixels of a picture of that size. The longer side: faces that are seen from the side are narrow.
float sizeOf(const Face& face, int width, int height) {
    return std::max(
        {face.rect[2] * static_cast<float>(width), face.rect[3] * static_cast<float>(height), 1.0f});
}

int pixelAt(float fraction, int side) {
    return std::clamp(static_cast<int>(fraction * static_cast<float>(side)), 0, side - 1);
}

/// Calls visit(x, y) for the pixels of the face's inner half.
template <typename Visit>
void forInnerFace(const Face& face, int width, int height, const Visit& visit) {
    const auto at = [](float start, float length, float share, int side) {
        return pixelAt(start + share * length, side);
    };
    constexpr float kFrom = 0.25f, kTo = 0.75f;
    for (int y = at(face.rect[1], face.rect[3], kFrom, height);
         y <= at(face.rect[1], face.rect[3], kTo, height); ++y)
        for (int x = at(face.rect[0], face.rect[2], kFrom, width);
             x <= at(face.rect[0], face.rect[2], kTo, width); ++x)
            visit(x, y);
}

/// The face that the subject is chosen by.
std::size_t mainFace(const FaceSet& set, int width, int height, std::optional<Vector2f> focus) {
    const auto& faces = set.faces;
    // Far from the focus in sizes of the face, or small.
    const auto unlikely = [&](const Face& face) {
        const float size = sizeOf(face, width, height);
        if (!focus) return -size;
        const Vector2f middle = middleOf(face);
        const float down = (focus->y - middle.y) * static_cast<float>(height);
        return std::hypot((focus->x - middle.x) * static_cast<float>(width),
                          down > 0 ? down / kDownwards : down) /
               size;
    };
    const auto main = std::min_element(
        faces.begin(), faces.end(), [&](const Face& a, const Face& b) { return unlikely(a) < unlikely(b); });
    return static_cast<std::size_t>(main - faces.begin());
}

/// The picture in cells, where people are told from one another.
class Cells {
public:
    Cells(PlaneView<const float> shares, PlaneView<const Byte> depth) {
        const double scale = std::min(1.0, double{kGridSide} / std::max(shares.width, shares.height));
        const auto cells = [&](int pixels) {
            return std::max(1, static_cast<int>(std::lround(pixels * scale)));
        };
        m_width = cells(shares.width);
        m_height = cells(shares.height);
        m_depth = Plane<Byte>(m_width, m_height);
        scalePlane(depth, m_depth.view(), zellab::YuvFilter::box);
        m_somebody = Plane<Byte>(m_width, m_height);
        m_kept = Plane<Byte>(m_width, m_height);
        forCells([&](int x, int y) {
            const auto middle = [](int cell, int count, int pixels) {
                return std::min(static_cast<int>((cell + 0.5) * pixels / count), pixels - 1);
            };
            const float share =
                shares.row(middle(y, m_height, shares.height))[middle(x, m_width, shares.width)];
            m_somebody.row(y)[x] = share >= kSomebody ? 255 : 0;
            m_kept.row(y)[x] = 255;
        });
    }

    /// Drops what is closer to others than to the subject.
    void dropOthers(const FaceSet& faces, const std::vector<bool>& ofSubject) {
        std::vector<int> depths;
        for (const Face& face : faces.faces) depths.push_back(depthOf(face, std::as_const(m_depth).view()));
        forCells([&](int x, int y) {
            float least = std::numeric_limits<float>::infinity();
            for (std::size_t i = 0; i < depths.size(); ++i) {
                const Face& face = faces.faces[i];
                const Vector2f middle = middleOf(face);
                const float across = static_cast<float>(x) + 0.5f - middle.x * static_cast<float>(m_width);
                const float down = static_cast<float>(y) + 0.5f - middle.y * static_cast<float>(m_height);
                const float apart =
                    std::hypot(across, down > 0 ? down / kDownwards : down) /
                        sizeOf(face, m_width, m_height) +
                    static_cast<float>(std::abs(m_depth.row(y)[x] - depths[i])) / kDepthPerFace;
                if (apart >= least) continue;
                least = apart;
                m_kept.row(y)[x] = ofSubject[i] ? 255 : 0;
            }
        });
        forCells([&](int x, int y) {
            if (!m_kept.row(y)[x]) m_somebody.row(y)[x] = 0;
        });
    }

    /// Drops people who are not the subject; where `nearJoin`, those as near as the subject stay. False where nobody
    /// is the subject.
    bool dropParts(const FaceSet& faces, const std::vector<bool>& ofSubject, std::optional<Vector2f> focus,
                   bool nearJoin) {
        Plane<int> labels(m_width, m_height);
        const std::size_t count = LabelConnectedRuns(std::as_const(m_somebody).view(), labels.view()).size();
        std::vector<DepthMedian> medians(count + 1);
        std::vector<int> sizes(count + 1);
        std::vector<bool> isSubject(count + 1);
        const auto partAt = [&](int x, int y) { return static_cast<std::size_t>(labels.row(y)[x]); };
        forCells([&](int x, int y) {
            medians[partAt(x, y)].add(m_depth.row(y)[x]);
            ++sizes[partAt(x, y)];
        });
        if (focus && !isNearSomebody(pixelAt(focus->x, m_width), pixelAt(focus->y, m_height))) return false;
        for (std::size_t i = 0; i < faces.faces.size(); ++i)
            if (ofSubject[i])
                forInnerFace(faces.faces[i], m_width, m_height,
                             [&](int x, int y) { isSubject[partAt(x, y)] = true; });
        if (faces.faces.empty() && count > 0) {
            const std::size_t chosen =
                focus ? partAt(pixelAt(focus->x, m_width), pixelAt(focus->y, m_height)) : 0;
            isSubject[chosen > 0 ? chosen
                                 : static_cast<std::size_t>(std::max_element(sizes.begin() + 1, sizes.end()) -
                                                            sizes.begin())] = true;
        }
        isSubject[0] = false;
        int farthest = 255;
        for (std::size_t part = 1; part <= count; ++part)
            if (isSubject[part]) farthest = std::min(farthest, medians[part].value() - kDepthBehind);
        if (std::none_of(isSubject.begin(), isSubject.end(), [](bool is) { return is; })) return false;
        Plane<Byte> dropped(m_width, m_height);
        forCells([&](int x, int y) {
            const std::size_t part = partAt(x, y);
            if (part == 0 || isSubject[part] || (nearJoin && medians[part].value() >= farthest)) return;
            for (int v = std::max(y - kSoftCells, 0); v <= std::min(y + kSoftCells, m_height - 1); ++v)
                for (int u = std::max(x - kSoftCells, 0); u <= std::min(x + kSoftCells, m_width - 1); ++u)
                    if (partAt(u, v) == 0 || partAt(u, v) == part) m_kept.row(v)[u] = 0;
        });
        return true;
    }

    /// 255 where people are left.
    PlaneView<const Byte> kept() const { return m_kept.view(); }

private:
    template <typename Visit>
    void forCells(const Visit& visit) const {
        for (int y = 0; y < m_height; ++y)
            for (int x = 0; x < m_width; ++x) visit(x, y);
    }

    bool isNearSomebody(int x, int y) const {
        for (int v = std::max(y - kSoftCells, 0); v <= std::min(y + kSoftCells, m_height - 1); ++v)
            for (int u = std::max(x - kSoftCells, 0); u <= std::min(x + kSoftCells, m_width - 1); ++u)
                if (m_somebody.row(v)[u]) return true;
        return false;
    }

    int m_width = 0, m_height = 0;
    Plane<Byte> m_depth, m_somebody, m_kept;
};

/// Keeps the shares as far as their cells are kept.
void multiply(PlaneView<float> shares, PlaneView<const Byte> cells) {
    Plane<Byte> kept(shares.width, shares.height);
    if (cells.valid()) scalePlane(cells, kept.view(), zellab::YuvFilter::bilinear);
    zellab::parallelRows(shares.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < shares.width; ++x)
                shares.row(y)[x] *= static_cast<float>(kept.row(y)[x]) / 255;
    });
}

}  // namespace

int DepthMedian::rank(int rest) const {
    std::size_t bin = 0;
    while (bin < 255 && (rest -= m_histogram[bin]) >= 0) ++bin;
    return static_cast<int>(bin);
}

int depthOf(const Face& face, PlaneView<const Byte> depth) {
    DepthMedian median;
    forInnerFace(face, depth.width, depth.height, [&](int x, int y) { median.add(depth.row(y)[x]); });
    return median.value();
}

std::vector<bool> subjectFaces(const FaceSet& faces, PlaneView<const Byte> depth,
                               std::optional<Vector2f> focus) {
    const auto& all = faces.faces;
    std::vector<bool> ofSubject(all.size());
    if (all.empty() || !depth.valid()) return ofSubject;
    const std::size_t main = mainFace(faces, faces.width, faces.height, focus);
    const int depthOfMain = depthOf(all[main], depth);
    const float sizeOfMain = sizeOf(all[main], faces.width, faces.height);
    for (std::size_t i = 0; i < all.size(); ++i) {
        const float halvings = std::abs(std::log2(sizeOf(all[i], faces.width, faces.height) / sizeOfMain));
        const auto depthApart = static_cast<float>(std::abs(depthOf(all[i], depth) - depthOfMain));
        ofSubject[i] = depthApart / kDepthApart + halvings / kHalvingsApart < 1;
    }
    return ofSubject;
}

void keepPeopleOf(const FaceSet& faces, PlaneView<float> shares) {
    Cells cells(shares, {});
    const std::vector<bool> all(faces.faces.size(), true);
    const bool anybody = !faces.faces.empty() && cells.dropParts(faces, all, std::nullopt, false);
    multiply(shares, anybody ? cells.kept() : PlaneView<const Byte>());
}

void keepSubject(PlaneView<float> shares, const FaceSet& faces, const std::vector<bool>& ofSubject,
                 PlaneView<const Byte> depth, std::optional<Vector2f> focus) {
    Cells cells(shares, depth);
    cells.dropOthers(faces, ofSubject);
    const bool anybody = cells.dropParts(faces, ofSubject, focus, true);
    multiply(shares, anybody ? cells.kept() : PlaneView<const Byte>());
}

void dropForeground(PlaneView<float> shares, const FaceSet& faces, PlaneView<const Byte> depth) {
    int level = 0;
    for (const Face& face : faces.faces) level = std::max(level, depthOf(face, depth));
    const int nearest = static_cast<int>(zellab::Bokeh::nearestSharp(level));
    Plane<Byte> scaled(shares.width, shares.height);
    if (nearest >= 255 || !scalePlane(depth, scaled.view(), zellab::YuvFilter::bilinear)) return;
    zellab::parallelRows(shares.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < shares.width; ++x)
                if (scaled.row(y)[x] > nearest) shares.row(y)[x] = 0;
    });
}

void settleByDepth(PlaneView<float> shares, const FaceSet& faces, PlaneView<const Byte> depth) {
    int level = 255;
    for (const Face& face : faces.faces) level = std::min(level, depthOf(face, depth));
    Plane<Byte> scaled(shares.width, shares.height);
    if (!scalePlane(depth, scaled.view(), zellab::YuvFilter::bilinear)) return;
    // From far behind, -1, to the subject's own depth, 1.
    std::array<float, 256> votes{};
    for (int i = 0; i < 256; ++i)
        votes[static_cast<std::size_t>(i)] =
            std::clamp(1 - 2 * static_cast<float>(level - i) / static_cast<float>(kFarBehind), -1.0f, 1.0f);
    const auto isAtEar = [&](int x, int y) {
        constexpr float kFrom = -0.1f, kTo = 1.1f, kOnCheek = 0.15f,
                        kFromCheek = 0.3f;  // in the face's sizes
        const float u = (static_cast<float>(x) + 0.5f) / static_cast<float>(shares.width);
        const float v = (static_cast<float>(y) + 0.5f) / static_cast<float>(shares.height);
        return std::any_of(faces.faces.begin(), faces.faces.end(), [&](const Face& face) {
            const float down = (v - face.rect[1]) / face.rect[3];
            const float aside = std::abs((u - face.rect[0]) / face.rect[2] - 0.5f) - 0.5f;
            return down > kFrom && down < kTo && aside > -kOnCheek && aside < kFromCheek;
        });
    };
    zellab::parallelRows(shares.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            for (int x = 0; x < shares.width; ++x) {
                float& share = shares.row(y)[x];
                const float unsure = 1 - std::abs(2 * share - 1);
                const float vote = votes[scaled.row(y)[x]];
                share += kDepthSays * unsure * (isAtEar(x, y) ? 1 : vote);
            }
    });
}

}  // namespace zel
