#include "repairTruth.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <opencv2/photo.hpp>

namespace zelmeasure {

namespace {

constexpr int kMoles = 12, kScratches = 6;
constexpr double kFreckles = 0.5, kWrinkles = 0.8;

/// Structural similarity of every pixel.
cv::Mat similarity(const cv::Mat& a, const cv::Mat& b) {
    constexpr double kSigma = 1.5, kC1 = 6.5025, kC2 = 58.5225;  // (0.01 * 255)^2 and (0.03 * 255)^2
    const auto smooth = [](const cv::Mat& plane) {
        cv::Mat out;
        cv::GaussianBlur(plane, out, {11, 11}, kSigma);
        return out;
    };
    const cv::Mat meanA = smooth(a), meanB = smooth(b);
    const cv::Mat aa = meanA.mul(meanA), bb = meanB.mul(meanB), ab = meanA.mul(meanB);
    const cv::Mat varianceA = smooth(a.mul(a)) - aa, varianceB = smooth(b.mul(b)) - bb,
                  covariance = smooth(a.mul(b)) - ab;
    const cv::Mat above = (2 * ab + kC1).mul(2 * covariance + kC2),
                  below = (aa + bb + kC1).mul(varianceA + varianceB + kC2);
    return above / below;
}

}  // namespace

const std::vector<DefectKind>& defectKinds() {
    using zel::Portrait;
    using zel::PortraitParams;
    static const std::vector<DefectKind> kKinds = {
        {"moles", &Portrait::moles, [](PortraitParams& p) { p.moles = kMoles; }},
        {"freckles", &Portrait::freckles, [](PortraitParams& p) { p.freckles = kFreckles; }},
        {"wrinkles", &Portrait::wrinkles, [](PortraitParams& p) { p.wrinkles = kWrinkles; }},
        {"scratches", &Portrait::scratches, [](PortraitParams& p) { p.scratches = kScratches; }}};
    return kKinds;
}

zel::Portrait drawWith(const DefectKind& kind, unsigned seed) {
    zel::PortraitParams params;
    params.seed = seed;
    kind.ask(params);
    return zel::drawPortrait(params);
}

cv::Mat planeOf(const zel::Mask& mask) {
    return cv::Mat(mask.height, mask.width, CV_8U, const_cast<unsigned char*>(mask.samples.data()));
}

cv::Mat rgbaOf(const zel::Image& image) {
    return cv::Mat(image.height, image.width, CV_8UC4, const_cast<unsigned char*>(image.rgba.data()));
}

cv::Mat lumaOf(const zel::Image& image) {
    cv::Mat grey, luma;
    cv::cvtColor(rgbaOf(image), grey, cv::COLOR_RGBA2GRAY);
    grey.convertTo(luma, CV_32F);
    return luma;
}

std::vector<Part> partsOf(const cv::Mat& plane) {
    cv::Mat labels;
    const int count = cv::connectedComponents(plane, labels, 8, CV_32S);
    std::vector<Part> parts(static_cast<std::size_t>(count - 1));
    for (std::size_t i = 0; i < labels.total(); ++i)
        if (const int label = labels.ptr<int>()[i]) parts[static_cast<std::size_t>(label - 1)].push_back(i);
    return parts;
}

void Closeness::add(const zel::Image& image, const zel::Image& truth, const cv::Mat& where) {
    const cv::Mat similar = similarity(lumaOf(image), lumaOf(truth));
    for (std::size_t i = 0; i < where.total(); ++i) {
        if (!where.data[i]) continue;
        for (std::size_t c = 0; c < 3; ++c) {
            const double error = image.rgba[4 * i + c] - truth.rgba[4 * i + c];
            m_squares += error * error / 3;
        }
        m_similarity += static_cast<double>(similar.ptr<float>()[i]);
        ++m_pixels;
    }
}

double Closeness::psnr() const {
    return 10 * std::log10(255.0 * 255.0 * m_pixels / m_squares);
}

double Closeness::ssim() const {
    return m_similarity / m_pixels;
}

zel::Image filledByPeer(const zel::Image& image, const cv::Mat& mask, int method) {
    constexpr double kRadius = 3;  // pixels, as in the peer's own examples
    zel::Image out = image;
    cv::Mat rgb, filled;
    cv::cvtColor(rgbaOf(image), rgb, cv::COLOR_RGBA2RGB);
    cv::inpaint(rgb, mask, filled, kRadius, method);
    cv::cvtColor(filled, rgbaOf(out), cv::COLOR_RGB2RGBA);
    return out;
}

double meanColourChange(const Part& part, const zel::Image& a, const zel::Image& b) {
    cv::Mat means(1, 2, CV_32FC3, cv::Scalar::all(0));
    const std::array<const zel::Image*, 2> pictures = {&a, &b};
    for (std::size_t k = 0; k < 2; ++k)
        for (const std::size_t i : part)
            for (std::size_t c = 0; c < 3; ++c)
                means.ptr<float>()[3 * k + c] += static_cast<float>(pictures[k]->rgba[4 * i + c]) /
                                                 (255.0f * static_cast<float>(part.size()));
    cv::cvtColor(means, means, cv::COLOR_RGB2Lab);
    return cv::norm(means.at<cv::Vec3f>(0, 0) - means.at<cv::Vec3f>(0, 1));
}

double pupilDistance(const zel::Portrait& p) {
    return std::hypot(p.irises[0].x - p.irises[1].x, p.irises[0].y - p.irises[1].y);
}

cv::Mat featuresOf(const zel::Portrait& p) {
    constexpr int kCovered = 127;
    // Landmarks of the nose: its wings, and below its two nostrils.
    constexpr std::size_t kLeftWing = 62, kRightWing = 63, kTip = 64, kBelow = 57;
    constexpr float kNostril = 0.45f;  // of the face's mean brightness
    cv::Mat features =
        (planeOf(p.eyes) > kCovered) | (planeOf(p.brows) > kCovered) | (planeOf(p.lips) > kCovered);
    const auto& points = p.faces.faces[0].points;
    const auto at = [&](std::size_t i) {
        return cv::Point(static_cast<int>(points[i].x * static_cast<float>(p.image.width)),
                         static_cast<int>(points[i].y * static_cast<float>(p.image.height)));
    };
    const int rise = std::max(at(kBelow).y - at(kTip).y, 4);
    const cv::Rect box = cv::Rect(cv::Point(at(kLeftWing).x, at(kBelow).y - rise),
                                  cv::Point(at(kRightWing).x, at(kBelow).y + rise / 4)) &
                         cv::Rect(0, 0, features.cols, features.rows);
    const cv::Mat luma = lumaOf(p.clean);
    const double dark = kNostril * cv::mean(luma, planeOf(p.skin) > kCovered)[0];
    if (!box.empty()) features(box) |= luma(box) < dark;
    return features;
}

}  // namespace zelmeasure
