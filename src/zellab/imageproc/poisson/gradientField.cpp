#include "zellab/imageproc/poisson/gradientField.h"

#include "zellab/imageproc/core/parallelRows.h"

namespace zellab {

GradientField::GradientField(ConstImageView picture) : m_samples(picture.width, picture.height) {
    const int width = picture.width, height = picture.height;
    parallelRows(height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            const Byte* row = picture.row(y);
            // One row and column back at the ends, where the difference changes its sign. A side of one pixel
            // has no step at all.
            const Byte* down = picture.row(y + 1 < height ? y + 1 : height > 1 ? y - 1 : y);
            for (int x = 0; x < width; ++x) {
                const int right = x + 1 < width ? x + 1 : width > 1 ? x - 1 : x;
                Sample& sample = at(x, y);
                for (int c = 0; c < 3; ++c) {
                    const int here = row[4 * x + c];
                    sample.right[static_cast<std::size_t>(c)] =
                        static_cast<std::int16_t>(row[4 * right + c] - here);
                    sample.down[static_cast<std::size_t>(c)] =
                        static_cast<std::int16_t>(down[4 * x + c] - here);
                }
            }
        }
    });
}

}  // namespace zellab
