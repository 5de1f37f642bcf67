#pragma once

#include <vector>

#include "zellab/imageproc/core/imageView.h"

namespace zellab::Bokeh {

/// Strength (standard deviation) of a photograph's own grain over a grid of cells: of each colour about its
/// brightness, and of the brightness, as shares of full scale. A strength belongs to the middle of its cell;
/// between the middles it runs in straight lines.
struct GrainMap {
    static constexpr int kCellSide = 8;   // pixels
    static constexpr int kStrengths = 4;  // red, green, blue, brightness
    int across = 0, down = 0;             // cells, the last of which may reach beyond the photograph
    std::vector<float> strengths;         // four a cell, row by row

    const float* at(int x, int y) const {
        return strengths.data() + (static_cast<std::ptrdiff_t>(y) * across + x) * std::ptrdiff_t{kStrengths};
    }
};

/// Differences across 2 by 2 pixels see neither slopes nor straight outlines. A cell's strength is the mean of
/// their sizes in the flattest of four cells, its own and three farther out, so that texture (stray hair,
/// leaves) does not pass for grain.
GrainMap grainMap(const ConstImageView& photograph);

/// Bounds the strengths by what is usual in the photograph: where stray hair or leaves fill a cell and its neighbours,
/// their texture passes for grain, and would come back as specks where they are blurred.
void limitGrain(GrainMap& map);

}  // namespace zellab::Bokeh
