#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "beautykernel/facefleckcleaner/blobFinder.h"
#include "beautykernel/facefleckcleaner/faceCrop.h"
#include "beautykernel/facefleckcleaner/featureExclusion.h"
#include "beautykernel/facefleckcleaner/fineSpotTest.h"
#include "beautykernel/facefleckcleaner/fleckDetection.h"
#include "beautykernel/skinmaskstatisdetector/skinMaskManager.h"
#include "beautykernel/skinmaskstatisdetector/skinMaskStatisDetector.h"
#include "beautykernel/skinmaskstatisdetector/skinModel.h"
#include "fleckMeasures.h"
#include "libzel/faces/faceRecords.h"
#include "zellab/imageproc/colour/yCbCr.h"
#include "zellab/imageproc/core/ownedImage.h"

namespace zelmeasure {

namespace {

using zelbeauty::SkinFaceRecord;
using zellab::Byte;

/// In the order of the search.
enum Step { excluded, threshold, shape, tooDark, offColour, otherSkin, found, kSteps };
constexpr std::array<const char*, kSteps> kStepNames = {
    "a feature's polygon covers it", "it is not deep enough for the threshold",
    "its region's size or shape",    "the skin map, by its brightness",
    "the skin map, by its colour",   "the skin map, by both",
    "no step: it is found"};

struct SkinPlanes {
    std::vector<Byte> y, cb, cr;
    explicit SkinPlanes(zel::Image image) {
        const std::size_t count = image.rgba.size() / 4;
        y.resize(count), cb.resize(count), cr.resize(count);
        const auto planeOf = [&](std::vector<Byte>& plane) {
            return zellab::PlaneView<Byte>(plane.data(), image.width, image.height);
        };
        zellab::RGBAToYCbCrPlanes({image.rgba.data(), image.width, image.height}, planeOf(y), planeOf(cb),
                                  planeOf(cr));
    }
    zelbeauty::YCbCrView view(int width, int height) const {
        return {{y.data(), width, height}, {cb.data(), width, height}, {cr.data(), width, height}};
    }
};

SkinFaceRecord recordOf(const zel::Portrait& p) {
    const auto points = zel::makeFacePoints(p.faces, p.image.width, p.image.height);
    const CGRect rect = zel::faceRectInPixels(p.faces.faces[0], p.image.width, p.image.height);
    SkinFaceRecord record;
    record.left = static_cast<int>(rect.x), record.right = static_cast<int>(rect.x + rect.width);
    record.top = static_cast<int>(rect.y), record.bottom = static_cast<int>(rect.y + rect.height);
    std::copy_n(points->GetInterPoints(0), zellab::CInterFacePoint::kBlockPoints, record.points);
    record.pointCount = points->GetInterPointCount();
    return record;
}

zelbeauty::SkinModel modelOf(const SkinPlanes& planes, const SkinFaceRecord& face, int width, int height,
                             zelbeauty::SkinStatistics& statistics) {
    const zelbeauty::FaceColour colour =
        zelbeauty::SkinMaskStatisDetector::GetFaceColorYuv(planes.view(width, height), face);
    statistics = {colour.cb, colour.cr, colour.low, colour.high, true};
    return zelbeauty::SkinModel(statistics, false);
}

/// A search with what each of its steps leaves.
class Search {
public:
    Search(const zel::Portrait& p, bool fine)
        : m_planes(p.image),
          m_face(recordOf(p)),
          m_model(modelOf(m_planes, m_face, p.image.width, p.image.height, m_statistics)),
          m_width(p.image.width) {
        constexpr int kAllParts = 15;
        const int w = p.image.width, h = p.image.height;
        zelbeauty::SkinMaskManager skin(0);
        skin.DetectSkin(m_planes.view(w, h), {&m_face, 1}, kAllParts, false);
        const zellab::ConstImageView view(p.image.rgba.data(), w, h);
        const zellab::PlaneView<const Byte> map = skin.GetSkinMask();
        if (fine)
            searchFinely(view, map);
        else
            search(view, map);
    }

    Step lostAt(const Part& mole) const;
    /// Whether the search would change a pixel of the picture, and whether a polygon covers it.
    bool changes(std::size_t i) const { return at(m_kept.labels, i) > 0; }
    bool covers(std::size_t i) const { return at(m_crop.mask, i) <= m_mostExcluded; }

private:
    void search(zellab::ConstImageView view, zellab::PlaneView<const Byte> map) {
        constexpr int kSide = 280;
        m_crop = *zellab::cutFace(view, map, m_face, kSide, zellab::YuvFilter::linear);
        zellab::excludeFeatures(m_crop, false);
        m_spots = zellab::darkSpots(m_crop.view(), m_crop.mask.view());
        m_shaped = zellab::shapedLikeFlecks(m_spots.view());
        m_kept = zellab::shapedLikeFlecks(m_spots.view());
        zellab::keepOnSkin(m_kept, m_crop.mask.view());
    }
    void searchFinely(zellab::ConstImageView view, zellab::PlaneView<const Byte> map) {
        constexpr int kSide = 640, kFill = 740, kLong = 720;
        constexpr std::size_t kFirstPupil = 169, kSecondPupil = 170;
        constexpr float kSmall = 0.015f, kLarge = 0.075f, kSize = 0.001f;  // radii and least size
        m_mostExcluded = 100;
        m_crop = *zellab::cutFace(view, map, m_face, kSide, zellab::YuvFilter::bilinear);
        zellab::excludeFeaturesFinely(m_crop, false);
        zellab::Plane<Byte> green(m_crop.width, m_crop.height), nothing(m_crop.width, m_crop.height);
        zellab::Plane<Byte> anywhere(m_crop.width, m_crop.height);
        std::fill_n(anywhere.data(), anywhere.size(), Byte{255});
        for (std::size_t i = 0; i < green.size(); ++i) green.data()[i] = m_crop.pixels.data()[4 * i + 1];
        const zellab::Vector2f a = m_crop.points[kFirstPupil], b = m_crop.points[kSecondPupil];
        const float distance = std::hypot(a.x - b.x, a.y - b.y);
        m_spots = zellab::findBlobs(
            green.view(), m_crop.mask.view(), nothing.view(),
            {static_cast<int>(kSmall * distance), static_cast<int>(kLarge * distance)}, kSize);
        m_shaped = zellab::passingSpots(m_spots.view(), anywhere.view(), {kFill, kLong, kSize});
        m_kept = zellab::passingSpots(m_spots.view(), m_crop.mask.view(), {kFill, kLong, kSize});
    }

    template <typename Sample>
    Sample at(const zellab::Plane<Sample>& plane, std::size_t i) const {
        const auto toCrop = [](int position, float scale, int size) {
            return std::clamp(static_cast<int>(static_cast<float>(position) / scale), 0, size - 1);
        };
        const int x = toCrop(static_cast<int>(i) % m_width - m_crop.box.left, m_crop.toBoxX(), m_crop.width);
        const int y = toCrop(static_cast<int>(i) / m_width - m_crop.box.top, m_crop.toBoxY(), m_crop.height);
        return plane.view().row(y)[x];
    }
    template <typename Test>
    static bool mostly(const Part& mole, const Test& test) {
        return static_cast<std::size_t>(std::count_if(mole.begin(), mole.end(), test)) * 2 > mole.size();
    }

    SkinPlanes m_planes;
    SkinFaceRecord m_face;
    zelbeauty::SkinStatistics m_statistics;
    zelbeauty::SkinModel m_model;
    int m_width, m_mostExcluded = 1;
    zellab::FaceCrop m_crop;
    zellab::Plane<Byte> m_spots;
    zellab::FoundFlecks m_shaped, m_kept;
};

Step Search::lostAt(const Part& mole) const {
    if (mostly(mole, [&](std::size_t i) { return at(m_kept.labels, i) > 0; })) return found;
    if (mostly(mole, [&](std::size_t i) { return at(m_crop.mask, i) == 1; })) return excluded;
    if (!mostly(mole, [&](std::size_t i) { return at(m_spots, i) != 0; })) return threshold;
    if (!mostly(mole, [&](std::size_t i) { return at(m_shaped.labels, i) > 0; })) return shape;
    const int third = static_cast<int>(mole.size()) / 3;  // enough to turn a spot away
    const auto below = [&](const auto& weight) {
        return std::count_if(mole.begin(), mole.end(),
                             [&](std::size_t i) { return weight(i) < zellab::kSpotSkin; });
    };
    if (below([&](std::size_t i) {
            return m_model.weight(m_planes.y[i], m_statistics.cb, m_statistics.cr);
        }) > third)
        return tooDark;
    if (below([&](std::size_t i) {
            return m_model.weight(m_statistics.low, m_planes.cb[i], m_planes.cr[i]);
        }) > third)
        return offColour;
    return otherSkin;
}

}  // namespace

void printLostMoles(unsigned firstSeed, int count) {
    std::array<std::array<int, kSteps>, 2> lost{};
    std::array<int, 2> coveredPixels{}, openPixels{};
    int moles = 0;
    for (int i = 0; i < count; ++i) {
        const zel::Portrait p = drawWith(defectKinds()[0], firstSeed + static_cast<unsigned>(i));
        const std::vector<Part> spots = countedSpots(p.moles, p);
        const cv::Mat features = featuresOf(p);
        moles += static_cast<int>(spots.size());
        for (std::size_t method : {0u, 1u}) {
            const Search search(p, method == 1);
            for (const Part& mole : spots) ++lost[method][search.lostAt(mole)];
            for (std::size_t k = 0; k < features.total(); ++k)
                if (features.data[k] && search.changes(k))
                    ++(search.covers(k) ? coveredPixels : openPixels)[method];
        }
    }
    std::printf("| of %d moles lost at | flecks | fine |\n|---|--:|--:|\n", moles);
    for (std::size_t step = 0; step < kSteps; ++step)
        std::printf("| %s | %d | %d |\n", kStepNames[step], lost[0][step], lost[1][step]);
    std::printf("| feature pixels changed under a polygon | %d | %d |\n", coveredPixels[0], coveredPixels[1]);
    std::printf("| feature pixels changed beside the polygons | %d | %d |\n", openPixels[0], openPixels[1]);
}

}  // namespace zelmeasure
