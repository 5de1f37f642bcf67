#pragma once

#include <vector>

#include "zellab/imageproc/core/imageView.h"

namespace zellab {

/// Adds `amount` times the difference between a picture and its blurred copy.
class UnsharpMaskKernel {
public:
    static constexpr int kAllChannels = 7;

    /// @param sigma   above 0 and finite; sizes the weight table
    /// @param amount  finite
    UnsharpMaskKernel(float sigma, float amount);

    /// Sharpens the picture in place; `blurred` has the same size and may be the same picture.
    /// @param channelMask  7: all channels in single precision; other values: the channels whose bit is set,
    ///                     in fixed point with four decimals
    void Run(ImageView image, ConstImageView blurred, int channelMask = kAllChannels) const;

    /// Integer weights of a Gaussian of this sigma, 1 at both ends. The blur is the caller's, so they only
    /// tell its scale.
    const std::vector<int>& Weights() const { return m_weights; }

private:
    float m_amount;
    std::vector<int> m_weights;
};

}  // namespace zellab
