#pragma once

#include <cstddef>
#include <vector>

namespace zellab {

/// Adds `amount` times the difference between a picture and its blurred copy.
class UnsharpMaskKernel {
public:
    static constexpr int kAllChannels = 7;

    /// @param rowBytes  4 * width
    /// @param sigma     above 0 and finite; sizes the weight table
    /// @param amount    finite
    UnsharpMaskKernel(int width, int height, std::ptrdiff_t rowBytes, float sigma, float amount);

    /// Sharpens the RGBA picture in place; `blurred` has the same size and may be the same buffer.
    /// @param channelMask  7: all channels in single precision; other values: the channels whose bit is set,
    ///                     in fixed point with four decimals
    void Run(unsigned char* rgba, const unsigned char* blurred, int channelMask = kAllChannels) const;

    /// Integer weights of a Gaussian of this sigma, 1 at both ends. The blur is the caller's, so they only
    /// tell its scale.
    const std::vector<int>& Weights() const { return m_weights; }

private:
    int m_width, m_height;
    std::ptrdiff_t m_rowBytes;
    float m_sigma, m_amount;
    std::vector<int> m_weights;
};

}  // namespace zellab
