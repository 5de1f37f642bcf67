#include "fleckMeasures.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <opencv2/imgproc.hpp>
#include <opencv2/photo.hpp>

#include "libzel/faces/faceRecords.h"

namespace zelmeasure {

namespace {

constexpr double kLeastDiameter = 0.01;  // of the pupils' distance
constexpr int kCore = 96, kTrace = 16;   // cover of a spot, and of its last trace

struct Tally {
    int flecks = 0, removed = 0;
    int offSpots = 0, visible = 0, visibleAtHair = 0;
    long featurePixels = 0;
    Closeness before, ours, telea, navierStokes;
};

double errorIn(const Part& part, const zel::Image& a, const zel::Image& b) {
    double sum = 0;
    for (const std::size_t i : part)
        for (std::size_t c = 0; c < 3; ++c) sum += std::abs(a.rgba[4 * i + c] - b.rgba[4 * i + c]);
    return sum;
}

/// Where hair grows or falls over the skin, with a rim: scalp hair, brows, and the stubble that a shaven
/// portrait of the same seed lacks.
cv::Mat hairOf(const zel::Portrait& p, unsigned seed) {
    constexpr double kRim = 0.03;      // of the pupils' distance
    constexpr int kStubbleLevels = 3;  // by which a hair darkens the skin
    zel::PortraitParams params;
    params.seed = seed;
    params.stubble = 0;
    const zel::Portrait shaven = zel::drawPortrait(params);
    cv::Mat hair = (planeOf(p.hair) > kTrace) | (planeOf(p.brows) > kTrace), stubble;
    cv::absdiff(lumaOf(p.clean), lumaOf(shaven.clean), stubble);
    hair |= stubble > kStubbleLevels;
    const int reach = std::max(static_cast<int>(kRim * pupilDistance(p)), 1);
    cv::dilate(hair, hair, cv::getStructuringElement(cv::MORPH_ELLIPSE, {2 * reach + 1, 2 * reach + 1}));
    return hair;
}

cv::Mat changedPixels(const zel::Image& a, const zel::Image& b) {
    cv::Mat changed = cv::Mat::zeros(a.height, a.width, CV_8U);
    for (std::size_t i = 0; i < changed.total(); ++i)
        if (!std::equal(&a.rgba[4 * i], &a.rgba[4 * i + 3], &b.rgba[4 * i])) changed.data[i] = 255;
    return changed;
}

void countRepairsOffSpots(const zel::Portrait& p, const zel::Image& repaired, const zel::Mask& layer,
                          const cv::Mat& changed, const cv::Mat& hair, Tally& tally) {
    for (const Part& patch : partsOf(changed)) {
        if (std::any_of(patch.begin(), patch.end(), [&](std::size_t i) { return layer.samples[i] > kTrace; }))
            continue;
        ++tally.offSpots;
        if (meanColourChange(patch, repaired, p.image) <= kNoticeable) continue;
        ++tally.visible;
        const auto inHair =
            std::count_if(patch.begin(), patch.end(), [&](std::size_t i) { return hair.data[i]; });
        tally.visibleAtHair += static_cast<std::size_t>(inHair) * 2 > patch.size();
    }
}

void measure(const zel::Portrait& p, const zel::Mask& layer, const cv::Mat& hair, int method, Tally& tally) {
    zel::Image image = p.image;
    const auto points = zel::makeFacePoints(p.faces, image.width, image.height);
    CGRect rect = zel::faceRectInPixels(p.faces.faces[0], image.width, image.height);
    ZelImageCore::TableSkin::ImageProcessWithAutoFaceInpaint(image.rgba.data(), nullptr, image.width,
                                                             image.height, rect, points.get(), 0, method);
    const cv::Mat changed = changedPixels(image, p.image);
    tally.featurePixels += cv::countNonZero(changed & featuresOf(p));
    for (const Part& fleck : countedSpots(layer, p)) {
        ++tally.flecks;
        tally.removed += errorIn(fleck, image, p.clean) < 0.5 * errorIn(fleck, p.image, p.clean);
    }
    countRepairsOffSpots(p, image, layer, changed, hair, tally);
    tally.before.add(p.image, p.clean, changed);
    tally.ours.add(image, p.clean, changed);
    tally.telea.add(filledByPeer(p.image, changed, cv::INPAINT_TELEA), p.clean, changed);
    tally.navierStokes.add(filledByPeer(p.image, changed, cv::INPAINT_NS), p.clean, changed);
}

}  // namespace

std::vector<Part> countedSpots(const zel::Mask& layer, const zel::Portrait& p) {
    constexpr int kOnFace = 200;
    std::vector<Part> spots = partsOf(planeOf(layer) > kCore);
    std::erase_if(spots, [&](const Part& spot) {
        const bool onFace = std::all_of(spot.begin(), spot.end(), [&](std::size_t i) {
            return p.face.samples[i] > kOnFace && p.skin.samples[i] > kOnFace;
        });
        const double diameter = std::sqrt(static_cast<double>(spot.size()) * 4 / CV_PI);
        return !onFace || diameter < kLeastDiameter * pupilDistance(p);
    });
    return spots;
}

void printFlecks(unsigned firstSeed, int count) {
    constexpr const char* kMethods[] = {"flecks", "fine"};
    std::printf(
        "| spots | method | spots that count | removed | repairs off spots, a face | of them visible | of "
        "those "
        "off hair | feature pixels | PSNR before / ours / Telea / Navier-Stokes | SSIM |\n"
        "|---|---|--:|--:|--:|--:|--:|--:|---|---|\n");
    for (std::size_t kind : {0u, 1u}) {
        const DefectKind& defect = defectKinds()[kind];
        Tally tallies[2];
        for (int i = 0; i < count; ++i) {
            const unsigned seed = firstSeed + static_cast<unsigned>(i);
            const zel::Portrait p = drawWith(defect, seed);
            const cv::Mat hair = hairOf(p, seed);
            for (int method : {0, 1}) measure(p, p.*defect.layer, hair, method, tallies[method]);
        }
        for (int method : {0, 1}) {
            const Tally& t = tallies[method];
            const auto perFace = [&](int number) { return static_cast<double>(number) / count; };
            std::printf(
                "| %s | %s | %d | %.2f | %.1f | %.1f | %.1f | %ld | %.1f / %.1f / %.1f / %.1f | %.3f / %.3f "
                "/ "
                "%.3f / %.3f |\n",
                defect.name, kMethods[method], t.flecks,
                t.flecks ? static_cast<double>(t.removed) / t.flecks : 0, perFace(t.offSpots),
                perFace(t.visible), perFace(t.visible - t.visibleAtHair), t.featurePixels, t.before.psnr(),
                t.ours.psnr(), t.telea.psnr(), t.navierStokes.psnr(), t.before.ssim(), t.ours.ssim(),
                t.telea.ssim(), t.navierStokes.ssim());
        }
    }
}

}  // namespace zelmeasure
