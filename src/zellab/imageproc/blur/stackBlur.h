#pragma once

namespace zellab {

/// The everyday blur: a triangle of half-width radius + 1 along rows, then along columns, that looks like a
/// Gaussian and costs the same for every radius. All members work in place with the same integer arithmetic:
/// the sum of the weighted samples divided by (radius + 1)^2, truncated to a byte after either direction;
/// beyond the picture its edge samples repeat.
///
/// Bad input (a null pointer, a size below 1, a negative radius) leaves the picture as it is. The bytes do
/// not depend on the number of workers. Holds no data.
class CStackBlur {
public:
    /// @param rowBytes  selects the form and nothing else: rowBytes / width = 1 blurs a plane of width bytes
    ///                  a row, more blurs bytes 0 to 2 of RGBA rows of width * 4 bytes; below width nothing
    ///                  happens
    /// @param radius    limited by stackBlurRadius(); 0 changes nothing
    static void StackBlurEx(unsigned char* pixels, int width, int height, int rowBytes, int radius);

    /// Bytes 0, 1 and 2 of RGBA pixels, with the radius as it stands.
    /// @param threads  1, or more to use all processors
    static void StackBlurExOptimized(unsigned char* pixels, int width, int height, int radius, int threads);

    /// A plane of one byte a pixel, with the radius as it stands.
    static void StackBlurExGray(unsigned char* plane, int width, int height, int radius, int threads);
};

/// StackBlurEx on RGBA pixels.
void StackBlurRGBA(unsigned char* pixels, int width, int height, int radius);

/// StackBlurEx on a plane.
void StackBlurGray(unsigned char* plane, int width, int height, int radius);

/// All four bytes of RGBA pixels. The radius has no limit.
void StackBlurAllChannels(unsigned char* pixels, int width, int height, int radius);

/// Byte 0 of RGBA pixels; the others stay. The radius has no limit. Runs on the caller's thread.
void MaskStackBlur(unsigned char* pixels, int width, int height, int radius);

/// The radius that StackBlurEx uses: above a quarter of the shorter side it becomes
/// (shorter side / 2 - 1) / 2, in integers.
int stackBlurRadius(int width, int height, int radius);

/// How many workers StackBlurEx gives a picture of four bytes a pixel: one below 12101 pixels.
int stackBlurWorkers(int width, int height);

}  // namespace zellab
