#include "fillMeasures.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <opencv2/imgproc.hpp>
#include <opencv2/photo.hpp>

namespace zelmeasure {

namespace {

using ZelImageCore::TableSkin;
using Fill = zel::Image (*)(const zel::Image&, const cv::Mat&);

constexpr int kTrace = 48, kCore = 96;  // cover of a defect: where it shows, and its middle
constexpr int kBrush = 2;               // pixels by which a painted mask reaches beyond the defect

cv::Mat grown(const cv::Mat& mask, int reach) {
    cv::Mat out;
    cv::dilate(mask, out, cv::getStructuringElement(cv::MORPH_ELLIPSE, {2 * reach + 1, 2 * reach + 1}));
    return out;
}

cv::Mat paintedMask(const zel::Mask& layer, int trace = kTrace) {
    return grown(planeOf(layer) > trace, kBrush);
}

/// Repairs one marked part after the other, as strokes of a brush come.
template <typename Repair>
zel::Image byParts(const zel::Image& image, const cv::Mat& mask, const Repair& repair) {
    zel::Image out = image;
    for (const Part& part : partsOf(mask)) {
        cv::Mat one = cv::Mat::zeros(mask.size(), CV_8U);
        for (const std::size_t i : part) one.data[i] = 255;
        repair(out, one.data);
    }
    return out;
}

zel::Image inpainted(const zel::Image& image, const cv::Mat& mask, int method) {
    std::srand(1);
    return byParts(image, mask, [method](zel::Image& out, unsigned char* part) {
        TableSkin::ImageProcessWithInpaint(out.rgba.data(), out.width, out.height, part, method);
    });
}

zel::Image smoothed(const zel::Image& image, const cv::Mat& mask, int method) {
    return byParts(image, mask, [method](zel::Image& out, unsigned char* part) {
        TableSkin::ImageProcessWithWrinkleCleaner(out.rgba.data(), out.width, out.height, part, 100, method);
    });
}

/// Squares of what the four neighbours' mean leaves: the finest scale.
cv::Mat textureOf(const zel::Image& image) {
    const cv::Mat luma = lumaOf(image);
    const cv::Mat kernel = (cv::Mat_<float>(3, 3) << 0, 0.25f, 0, 0.25f, -1, 0.25f, 0, 0.25f, 0);
    cv::Mat detail;
    cv::filter2D(luma, detail, CV_32F, kernel);
    return detail.mul(detail);
}

constexpr double kToneSigma = 2;  // pixels: what is finer is grain

zel::Image toneOf(const zel::Image& image) {
    zel::Image tone = image;
    cv::GaussianBlur(rgbaOf(tone), rgbaOf(tone), {}, kToneSigma);
    return tone;
}

/// The picture's tone with the grain of the pixels beside.
zel::Image withOtherGrain(const zel::Image& image) {
    constexpr int kAway = 24;  // pixels
    cv::Mat picture, tone, moved;
    rgbaOf(image).convertTo(picture, CV_32F);
    cv::GaussianBlur(picture, tone, {}, kToneSigma);
    cv::copyMakeBorder(picture - tone, moved, 0, 0, kAway, 0, cv::BORDER_REFLECT);
    zel::Image out = image;
    cv::Mat(tone + moved.colRange(0, picture.cols)).convertTo(rgbaOf(out), CV_8U);
    return out;
}

struct Engine {
    const char* name;
    Fill fill;
};

const std::array<Engine, 6> kEngines = {{
    {"inpaint gradient", [](const zel::Image& i, const cv::Mat& m) { return inpainted(i, m, 1); }},
    {"inpaint patches", [](const zel::Image& i, const cv::Mat& m) { return inpainted(i, m, 0); }},
    {"wrinkle-cleaner mask", [](const zel::Image& i, const cv::Mat& m) { return smoothed(i, m, 0); }},
    {"wrinkle-cleaner region", [](const zel::Image& i, const cv::Mat& m) { return smoothed(i, m, 2); }},
    {"OpenCV Telea",
     [](const zel::Image& i, const cv::Mat& m) { return filledByPeer(i, m, cv::INPAINT_TELEA); }},
    {"OpenCV Navier-Stokes",
     [](const zel::Image& i, const cv::Mat& m) { return filledByPeer(i, m, cv::INPAINT_NS); }},
}};

/// Sum over the wrinkles of how much darker or lighter each is than the skin along it.
double lineContrast(const zel::Image& image, const zel::Mask& layer, const cv::Mat& painted) {
    constexpr int kNear = 2, kFar = 6;  // pixels from the painted line
    const cv::Mat luma = lumaOf(image), cores = planeOf(layer) > kCore;
    double sum = 0;
    cv::Mat labels;
    const int count = cv::connectedComponents(cores, labels, 8, CV_32S);
    for (int i = 1; i < count; ++i) {
        const cv::Mat line = labels == i;
        const cv::Mat ring = grown(line, kBrush + kFar) & ~grown(line, kBrush + kNear) & ~painted;
        if (cv::countNonZero(ring) == 0) continue;
        sum += std::abs(cv::mean(luma, line)[0] - cv::mean(luma, ring)[0]) * cv::countNonZero(line);
    }
    return sum;
}

/// One row of the table of fills.
struct FillRow {
    Closeness whole, tone;
    double texture = 0;  // summed squares on the mask
    void add(const zel::Image& image, const zel::Image& truth, const cv::Mat& mask) {
        whole.add(image, truth, mask);
        tone.add(toneOf(image), toneOf(truth), mask);
        texture += cv::mean(textureOf(image), mask)[0] * cv::countNonZero(mask);
    }
};

}  // namespace

void printFills(unsigned firstSeed, int count) {
    std::printf(
        "| defect | fill | PSNR | PSNR of the tone | SSIM | texture, of the truth's "
        "|\n|---|---|--:|--:|--:|--:|\n");
    for (const DefectKind& kind : defectKinds()) {
        FillRow truth, unrepaired, flat, grainy;
        std::array<FillRow, kEngines.size()> rows;
        for (int i = 0; i < count; ++i) {
            const zel::Portrait p = drawWith(kind, firstSeed + static_cast<unsigned>(i));
            const cv::Mat mask = paintedMask(p.*kind.layer);
            truth.add(p.clean, p.clean, mask);
            unrepaired.add(p.image, p.clean, mask);
            flat.add(toneOf(p.clean), p.clean, mask);
            grainy.add(withOtherGrain(p.clean), p.clean, mask);
            for (std::size_t k = 0; k < kEngines.size(); ++k)
                rows[k].add(kEngines[k].fill(p.image, mask), p.clean, mask);
        }
        const auto print = [&](const char* name, const FillRow& row) {
            std::printf("| %s | %s | %.1f | %.1f | %.3f | %.2f |\n", kind.name, name, row.whole.psnr(),
                        row.tone.psnr(), row.whole.ssim(), std::sqrt(row.texture / truth.texture));
        };
        print("not repaired", unrepaired);
        for (std::size_t k = 0; k < kEngines.size(); ++k) print(kEngines[k].name, rows[k]);
        print("the true tone without its grain", flat);
        print("the true tone with the grain beside", grainy);
    }
}

void printWrinkles(unsigned firstSeed, int count) {
    const DefectKind& kind = defectKinds()[2];
    constexpr std::array<const char*, 2> kNames = {"mask", "region"};
    std::array<double, 2> contrast{}, beside{}, on{};
    double contrastBefore = 0, besideBefore = 0, onTruth = 0;
    for (int i = 0; i < count; ++i) {
        const zel::Portrait p = drawWith(kind, firstSeed + static_cast<unsigned>(i));
        const zel::Mask& layer = p.*kind.layer;
        constexpr int kWholeWrinkle = 16;  // a broad brush: to the last trace of a wrinkle's slopes
        const cv::Mat painted = paintedMask(layer, kWholeWrinkle);
        const cv::Mat skin = planeOf(p.skin) > 200, rim = grown(painted, 8) & ~painted & skin;
        const auto sumOver = [](const zel::Image& image, const cv::Mat& where) {
            return cv::mean(textureOf(image), where)[0] * cv::countNonZero(where);
        };
        contrastBefore += lineContrast(p.image, layer, painted);
        besideBefore += sumOver(p.image, rim);
        onTruth += sumOver(p.clean, painted & skin);
        for (std::size_t k = 0; k < 2; ++k) {
            const zel::Image out = smoothed(p.image, painted, k == 0 ? 0 : 2);
            contrast[k] += lineContrast(out, layer, painted);
            beside[k] += sumOver(out, rim);
            on[k] += sumOver(out, painted & skin);
        }
    }
    std::printf(
        "| method | contrast along the lines falls by | texture beside them kept | texture on them, of the "
        "truth's |\n|---|--:|--:|--:|\n");
    for (std::size_t k = 0; k < 2; ++k)
        std::printf("| %s | %.0f %% | %.2f | %.2f |\n", kNames[k], 100 * (1 - contrast[k] / contrastBefore),
                    std::sqrt(beside[k] / besideBefore), std::sqrt(on[k] / onTruth));
}

}  // namespace zelmeasure
