#pragma once

namespace zellab {

/// A separable filter scaler: 128 phases between samples, weights of 14 bits.
class ImageResampler {
public:
    /// Takes the worker count from ProcessorCount().
    ImageResampler();

    /// Scales a plane (`channels` 1) or RGBA (`channels` 4, alpha like the rest), rows tightly packed.
    /// `quality` 0 interpolates between two samples, 3 is a cubic, 1 and others are longer filters; all but
    /// 0 average on the way down. Equal sizes copy. Returns false, the target untouched, for a null buffer,
    /// a side of 0 or less or another channel count.
    bool Resize(const unsigned char* source, int sourceWidth, int sourceHeight, unsigned char* target,
                int targetWidth, int targetHeight, int channels, int quality);

private:
    int m_threads;
};

}  // namespace zellab
