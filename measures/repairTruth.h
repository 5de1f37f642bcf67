#pragma once

#include <functional>
#include <memory>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "portrait/portrait.h"
#include "zel_effects/zel_effects.h"

/// Synthetic portraits with one kind of defect each, and what a repair of them is judged by.

namespace zelmeasure {

struct DefectKind {
    const char* name;
    zel::Mask zel::Portrait::*layer;
    void (*ask)(zel::PortraitParams&);
};
const std::vector<DefectKind>& defectKinds();  // moles, freckles, wrinkles, scratches

zel::Portrait drawWith(const DefectKind& kind, unsigned seed);

/// Views without a copy.
cv::Mat planeOf(const zel::Mask& mask);
cv::Mat rgbaOf(const zel::Image& image);
/// Brightness as floats.
cv::Mat lumaOf(const zel::Image& image);

/// The connected parts of a plane that are not 0, each as its pixels' indices.
using Part = std::vector<std::size_t>;
std::vector<Part> partsOf(const cv::Mat& plane);

/// Sums the closeness to the truth over many pictures: squared errors and structural similarity (8 bits of
/// brightness, a Gaussian window of 1.5 pixels) of the pixels that a mask marks.
class Closeness {
public:
    void add(const zel::Image& image, const zel::Image& truth, const cv::Mat& where);
    double psnr() const;
    double ssim() const;

private:
    double m_squares = 0, m_similarity = 0, m_pixels = 0;
};

/// The picture with the marked pixels filled by the peer; method as in cv::inpaint.
zel::Image filledByPeer(const zel::Image& image, const cv::Mat& mask, int method);

/// The just noticeable difference of two patches of colour, in CIELAB.
inline constexpr double kNoticeable = 2.3;

/// Distance in CIELAB between a part's mean colours in two pictures: what an eye sees that does not count
/// grains.
double meanColourChange(const Part& part, const zel::Image& a, const zel::Image& b);

double pupilDistance(const zel::Portrait& portrait);

/// Eyes, brows, lips and nostrils: 255 where the drawing has one of them.
cv::Mat featuresOf(const zel::Portrait& portrait);

}  // namespace zelmeasure
