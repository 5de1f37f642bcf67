#include <algorithm>
#include <array>
#include <cstdio>

#include "beautykernel/facefleckcleaner/faceCrop.h"
#include "beautykernel/facefleckcleaner/featureExclusion.h"
#include "beautykernel/facefleckcleaner/fleckDetection.h"
#include "beautykernel/skinmaskstatisdetector/skinMaskManager.h"
#include "beautykernel/skinmaskstatisdetector/skinMaskStatisDetector.h"
#include "beautykernel/skinmaskstatisdetector/skinModel.h"
#include "faceRecords.h"
#include "fleckMeasures.h"
#include "zellab/imageproc/yCbCr.h"

namespace zelmeasure {

namespace {

using zelbeauty::SkinFaceRecord;
using zellab::Byte;

/// In the order of the search. `brightness` and `chroma` tell why the skin map is too low.
enum Step { excluded, threshold, shape, brightness, chroma, otherSkin, found, kSteps };
constexpr std::array<const char*, kSteps> kStepNames = {"a feature's polygon covers it",
                                                        "the threshold of depth passes it by",
                                                        "its region's size or shape",
                                                        "the skin map: its brightness",
                                                        "the skin map: its chroma",
                                                        "the skin map: both or the map's scaling",
                                                        "no step (found, and repaired too little)"};

struct SkinPlanes {
    std::vector<Byte> y, cb, cr;
    explicit SkinPlanes(zel::Image image) {
        const std::size_t count = image.rgba.size() / 4;
        y.resize(count), cb.resize(count), cr.resize(count);
        zellab::RGBAToYCbCrPlanes(image.rgba.data(), y.data(), cb.data(), cr.data(), static_cast<int>(count));
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

/// The search of method 0, with what each step leaves.
class Search {
public:
    explicit Search(const zel::Portrait& p) : m_planes(p.image), m_face(recordOf(p)) {
        constexpr int kAllParts = 15, kSide = 280;
        const int w = p.image.width, h = p.image.height;
        zelbeauty::SkinMaskManager skin(0);
        skin.DetectSkin(m_planes.y.data(), m_planes.cb.data(), m_planes.cr.data(), w, h, 1, &m_face,
                        kAllParts, false);
        const zellab::ConstImageView view(p.image.rgba.data(), w, h);
        m_crop = *zellab::cutFace(view, {skin.GetSkinMask(), w, h}, m_face, kSide, zellab::YuvFilter::linear);
        zellab::excludeFeatures(m_crop, false);
        m_spots = zellab::darkSpots(m_crop.view(), m_crop.mask.view());
        m_shaped = zellab::shapedLikeFlecks(m_spots.view());
        m_kept.boxes = m_shaped.boxes;
        m_kept.labels = zellab::Plane<int>(m_crop.width, m_crop.height);
        std::copy_n(m_shaped.labels.data(), m_shaped.labels.size(), m_kept.labels.data());
        zellab::keepOnSkin(m_kept, m_crop.mask.view());
        int y = 0, cb = 0, cr = 0, low = 0, high = 0;
        zelbeauty::SkinMaskStatisDetector::GetFaceColorYuv(
            m_planes.y.data(), m_planes.cb.data(), m_planes.cr.data(), w, h, m_face, y, cb, cr, low, high);
        m_statistics = {cb, cr, low, high, true};
        m_width = w;
    }

    Step lostAt(const Part& mole) const;

private:
    template <typename Test>
    bool mostly(const Part& mole, const Test& test) const {
        const auto hits = std::count_if(mole.begin(), mole.end(), [&](std::size_t i) {
            const int x =
                toCrop(static_cast<int>(i) % m_width - m_crop.box.left, m_crop.toBoxX(), m_crop.width);
            const int y =
                toCrop(static_cast<int>(i) / m_width - m_crop.box.top, m_crop.toBoxY(), m_crop.height);
            return test(x, y, i);
        });
        return static_cast<std::size_t>(hits) * 2 > mole.size();
    }
    static int toCrop(int position, float scale, int size) {
        return std::clamp(static_cast<int>(static_cast<float>(position) / scale), 0, size - 1);
    }

    SkinPlanes m_planes;
    SkinFaceRecord m_face;
    zellab::FaceCrop m_crop;
    zellab::Plane<Byte> m_spots;
    zellab::FoundFlecks m_shaped, m_kept;
    zelbeauty::SkinStatistics m_statistics;
    int m_width = 0;
};

Step Search::lostAt(const Part& mole) const {
    const auto label = [](const zellab::FoundFlecks& flecks, int x, int y) {
        return flecks.labels.view().row(y)[x];
    };
    if (mostly(mole, [&](int x, int y, std::size_t) { return m_crop.mask.view().row(y)[x] == 1; }))
        return excluded;
    if (!mostly(mole, [&](int x, int y, std::size_t) { return m_spots.view().row(y)[x] != 0; }))
        return threshold;
    if (!mostly(mole, [&](int x, int y, std::size_t) { return label(m_shaped, x, y) > 0; })) return shape;
    if (mostly(mole, [&](int x, int y, std::size_t) { return label(m_kept, x, y) > 0; })) return found;
    const zelbeauty::SkinModel model(m_statistics, false);
    const bool dark = mostly(mole, [&](int, int, std::size_t i) {
        return model.weight(m_planes.y[i], m_statistics.cb, m_statistics.cr) < zellab::kSpotSkin;
    });
    const bool offColour = mostly(mole, [&](int, int, std::size_t i) {
        return model.weight(m_statistics.low, m_planes.cb[i], m_planes.cr[i]) < zellab::kSpotSkin;
    });
    return dark ? brightness : offColour ? chroma : otherSkin;
}

}  // namespace

void printLostMoles(unsigned firstSeed, int count) {
    std::array<int, kSteps> lost{};
    int moles = 0;
    for (int i = 0; i < count; ++i) {
        const zel::Portrait p = drawWith(defectKinds()[0], firstSeed + static_cast<unsigned>(i));
        const Search search(p);
        for (const Part& mole : countedSpots(p.moles, p)) ++moles, ++lost[search.lostAt(mole)];
    }
    std::printf("| the search of flecks lost a mole at | moles of %d |\n|---|--:|\n", moles);
    for (std::size_t step = 0; step < kSteps; ++step)
        std::printf("| %s | %d |\n", kStepNames[step], lost[step]);
}

}  // namespace zelmeasure
