#pragma once

#include "zellab/imageproc/tone/toneTables.h"

namespace zellab {

/// Brightness and contrast by families of curves: one curve of 256 bytes for every step of a slider.
class PSContrastBrightness {
public:
    virtual ~PSContrastBrightness() = default;

    /// Brightness first, then contrast on its result; bytes 0 to 2 of an RGBA picture in place.
    /// @param brightness, contrast  -100 to 100, limited to that range; 0 (and NaN) leaves the picture.
    ///        The steps reach brightness rows -149 to 150 and contrast rows -49 to 100.
    void Run(ImageView image, float brightness, float contrast);
};

/// The brightness curve of a row in -150..150; all zero for row 0 and outside.
/// Bright rows are a straight foot that bends into a shoulder; row -b is row b mirrored at the diagonal.
ByteTable BrightnessTable(int row);

/// The contrast curve of a row in -50..100; all zero for row 0 and outside.
/// Each row is an S of two parabolas that meet in (128, 128).
ByteTable ContrastTable(int row);

}  // namespace zellab
