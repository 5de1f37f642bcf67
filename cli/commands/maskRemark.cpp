#include "cli/commands/maskRemark.h"

#include <algorithm>
#include <cmath>

namespace zelcli {

namespace {

/// What was made for a picture of other proportions does not fit; a rounded reduction does.
constexpr double kProportionTolerance = 0.02;

std::string sizeText(int width, int height) {
    return std::to_string(width) + " by " + std::to_string(height);
}

}  // namespace

bool sameProportions(int width, int height, int otherWidth, int otherHeight) {
    const double proportion = static_cast<double>(width) / height;
    return !(std::abs(proportion * otherHeight / otherWidth - 1.0) > kProportionTolerance);
}

std::string maskRemark(const Mask& mask, const Image& image) {
    const auto [least, most] = std::minmax_element(mask.samples.begin(), mask.samples.end());
    if (*most == 0) return "the mask is all black and marks nothing";
    if (*least == 255) return "the mask is all white and marks the whole picture";
    if (mask.width == image.width && mask.height == image.height) return {};
    const bool fits = sameProportions(image.width, image.height, mask.width, mask.height);
    return "the mask is " + sizeText(mask.width, mask.height) + " pixels and is " +
           (fits ? "scaled to " : "stretched to other proportions, ") + sizeText(image.width, image.height);
}

}  // namespace zelcli
