#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "zellab/imageproc/core/imageView.h"

/// What the forms of the surface blur share: the disc, the weights, and what counts everywhere.

namespace zellab::surface {

inline constexpr int kLevels = 256;

/// Weights by distance in value, as one symmetric row around distance 0, in whole vectors. The sum of value
/// times weight is taken from the centre value c: sum(k * n) = c * sum(n) + sum((k - c) * n), and distance
/// times weight fits 16 bits where value times weight does not. Distance 0 counts twice, once for the walk
/// upward and once for the walk downward.
struct Weights {
    static constexpr int kVector = 16;

    int reach;                                 // largest distance that counts; the row starts at -reach
    std::vector<std::int16_t> weight, moment;  // weight, and distance times weight

    explicit Weights(int threshold);
};

/// The disc: dx and dy with |dx| <= half[|dy|]. It is the same along both axes.
struct Disc {
    int radius;
    std::vector<int> half;

    explicit Disc(int r);

    /// Columns that row dy reaches to either side; `more` widens the disc before truncation.
    int extent(int dy, float more) const;
};

/// A picture in a rim of zeros as wide as the disc's radius.
struct Padded {
    ConstImageView pixels;
    int rim;

    /// Of the picture's pixel (x, y); negative coordinates and those beyond its size lie in the rim.
    const Byte* at(int x, int y) const {
        return pixels.data + (std::ptrdiff_t{y} + rim) * pixels.stride + (std::ptrdiff_t{x} + rim) * 4;
    }
};

/// What a call works on.
struct Job {
    ImageView image;             // the result
    Padded before;               // the picture as it was
    PlaneView<const Byte> mask;  // of the image's size, 0 where pixels stay; or none
    const Disc& disc;
    const Weights& weights;
    std::vector<const Byte*> everywhere;  // pixels that count for each pixel of the picture
};

}  // namespace zellab::surface
