#include "zellab/imageproc/edgeaware/guidedFilterPlane.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/core/pixelMath.h"

namespace zellab {

namespace {

/// Means over a cell or a window: r, g, b and the plane p, then the products rr, rg, rb, gg, gb, bb, rp, gp,
/// bp.
constexpr std::size_t kMoments = 13;
using Moments = std::array<double, kMoments>;

/// The plane as a linear function of the colour: slopes for r, g, b from 0 to 1, then an offset, in levels.
constexpr std::size_t kModel = 4;
using Model = std::array<double, kModel>;

/// A window whose covariance has a smaller determinant than this says nothing about slopes.
constexpr double kLeastDeterminant = 1e-15;

struct Grid {
    int width, height;  // of the picture
    int columns, rows;  // of the shrunk picture

    Grid(int w, int h, float scale)
        : width(w), height(h), columns(shrunk(w, scale)), rows(shrunk(h, scale)) {}

    /// Where cell i of `cells` begins on a side of `length` pixels.
    static int begin(int i, int cells, int length) {
        return static_cast<int>(std::int64_t{i} * length / cells);
    }

private:
    static int shrunk(int length, float scale) {
        return std::max(static_cast<int>(static_cast<float>(length) / scale), 1);
    }
};

/// Means of the cells, first of the samples themselves and then of their products.
Plane<Moments> shrink(const Grid& grid, ConstImageView guide, PlaneView<const Byte> plane) {
    Plane<Moments> cells(grid.columns, grid.rows);
    parallelRows(grid.rows, [&](int begin, int end) {
        for (int row = begin; row < end; ++row)
            for (int column = 0; column < grid.columns; ++column) {
                const int left = Grid::begin(column, grid.columns, grid.width),
                          right = Grid::begin(column + 1, grid.columns, grid.width);
                const int top = Grid::begin(row, grid.rows, grid.height),
                          bottom = Grid::begin(row + 1, grid.rows, grid.height);
                std::array<std::int64_t, 4> sums{};
                for (int y = top; y < bottom; ++y)
                    for (int x = left; x < right; ++x) {
                        const Byte* colour = guide.at(x, y);
                        for (std::size_t c = 0; c < 3; ++c) sums[c] += colour[c];
                        sums[3] += plane.row(y)[x];
                    }
                const double count = static_cast<double>(right - left) * (bottom - top);
                const double r = static_cast<double>(sums[0]) / count / 255.0,
                             g = static_cast<double>(sums[1]) / count / 255.0,
                             b = static_cast<double>(sums[2]) / count / 255.0,
                             p = static_cast<double>(sums[3]) / count;
                cells.view().row(row)[column] = {r,     g,     b,     p,     r * r, r * g, r * b,
                                                 g * g, g * b, b * b, r * p, g * p, b * p};
            }
    });
    return cells;
}

/// Means along one line of `count` entries `step` apart, over windows that end where the line does.
template <std::size_t N>
void lineMeans(const std::array<double, N>* in, std::array<double, N>* out, int count, std::ptrdiff_t step,
               int radius) {
    std::array<double, N> sum{};
    const auto change = [&](int i, double sign) {
        for (std::size_t k = 0; k < N; ++k) sum[k] += sign * in[i * step][k];
    };
    for (int i = 0; i < std::min(radius, count); ++i) change(i, 1.0);
    for (int i = 0; i < count; ++i) {
        if (radius < count - i) change(i + radius, 1.0);
        if (i > radius) change(i - radius - 1, -1.0);
        const int size = std::min(radius, i) + std::min(radius, count - 1 - i) + 1;
        for (std::size_t k = 0; k < N; ++k) out[i * step][k] = sum[k] / size;
    }
}

template <std::size_t N>
Plane<std::array<double, N>> windowMeans(const Plane<std::array<double, N>>& in, int radius) {
    const int width = in.width(), height = in.height();
    Plane<std::array<double, N>> along(width, height), out(width, height);
    parallelRows(height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y)
            lineMeans<N>(in.view().row(y), along.view().row(y), width, 1, radius);
    });
    parallelRows(width, [&](int begin, int end) {
        for (int x = begin; x < end; ++x)
            lineMeans<N>(along.data() + x, out.data() + x, height, width, radius);
    });
    return out;
}

/// Least squares with `added` on the covariance's diagonal, by cofactors.
Model fit(const Moments& m, double added) {
    const auto [r, g, b, p, rr, rg, rb, gg, gb, bb, rp, gp, bp] = m;
    const double crr = rr - r * r + added, crg = rg - r * g, crb = rb - r * b;
    const double cgg = gg - g * g + added, cgb = gb - g * b, cbb = bb - b * b + added;
    const double vr = rp - r * p, vg = gp - g * p, vb = bp - b * p;
    const double irr = cgg * cbb - cgb * cgb, irg = cgb * crb - crg * cbb, irb = crg * cgb - cgg * crb;
    const double igg = crr * cbb - crb * crb, igb = crb * crg - crr * cgb, ibb = crr * cgg - crg * crg;
    const double determinant = crr * irr + crg * irg + crb * irb;
    if (!(determinant > kLeastDeterminant)) return {0.0, 0.0, 0.0, p};
    const double ar = (irr * vr + irg * vg + irb * vb) / determinant;
    const double ag = (irg * vr + igg * vg + igb * vb) / determinant;
    const double ab = (irb * vr + igb * vg + ibb * vb) / determinant;
    return {ar, ag, ab, p - ar * r - ag * g - ab * b};
}

/// Where a picture's pixel lies between the centres of two cells.
struct Between {
    int first, second;
    double share;  // of the second

    Between(int pixel, int length, int cells) {
        const double place = std::clamp((pixel + 0.5) * cells / length - 0.5, 0.0, cells - 1.0);
        first = static_cast<int>(place);
        second = std::min(first + 1, cells - 1);
        share = place - first;
    }
};

Model mix(const Model& a, const Model& b, double share) {
    Model out;
    for (std::size_t k = 0; k < kModel; ++k) out[k] = a[k] + (b[k] - a[k]) * share;
    return out;
}

void apply(const Grid& grid, const Plane<Model>& models, ConstImageView guide, PlaneView<Byte> plane) {
    std::vector<Between> across;
    across.reserve(grid.width);
    for (int x = 0; x < grid.width; ++x) across.emplace_back(x, grid.width, grid.columns);
    parallelRows(grid.height, [&](int begin, int end) {
        std::vector<Model> line(static_cast<std::size_t>(grid.columns));
        for (int y = begin; y < end; ++y) {
            const Between down(y, grid.height, grid.rows);
            const Model *above = models.view().row(down.first), *below = models.view().row(down.second);
            for (std::size_t i = 0; i < line.size(); ++i) line[i] = mix(above[i], below[i], down.share);
            for (int x = 0; x < grid.width; ++x) {
                const Between& at = across[static_cast<std::size_t>(x)];
                const Model m = mix(line[static_cast<std::size_t>(at.first)],
                                    line[static_cast<std::size_t>(at.second)], at.share);
                const Byte* colour = guide.at(x, y);
                const double level = (m[0] * colour[0] + m[1] * colour[1] + m[2] * colour[2]) / 255.0 + m[3];
                plane.row(y)[x] = truncateToByte(static_cast<float>(level) + 0.5f);
            }
        }
    });
}

}  // namespace

void GuidedFilterPlane(PlaneView<Byte> plane, ConstImageView guide, int radius, float epsilon, float scale) {
    if (!plane.valid() || !guide.valid()) return;
    const Grid grid(plane.width, plane.height, scale >= 1.0f ? scale : 1.0f);
    const int reach = std::clamp(radius, 0, std::max(grid.columns, grid.rows));
    const double added = epsilon > 0.0f ? static_cast<double>(epsilon) * static_cast<double>(epsilon) : 0.0;

    const Plane<Moments> moments = windowMeans(shrink(grid, guide, plane), reach);
    Plane<Model> models(grid.columns, grid.rows);
    for (std::size_t i = 0; i < models.size(); ++i) models.data()[i] = fit(moments.data()[i], added);
    apply(grid, windowMeans(models, reach), guide, plane);
}

}  // namespace zellab
