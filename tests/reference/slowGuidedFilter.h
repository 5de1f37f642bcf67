#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

/// The colour guided filter from its definition, in double precision with exact eigenvectors.

namespace slow {

using Matrix3 = std::array<std::array<double, 3>, 3>;

/// Jacobi rotations: afterwards `a` is diagonal and the columns of `vectors` are its eigenvectors.
inline void diagonalise(Matrix3& a, Matrix3& vectors) {
    vectors = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    for (int turn = 0; turn < 60; ++turn) {
        const int p = turn % 3 == 2 ? 1 : 0, q = turn % 3 == 0 ? 1 : 2;
        const double angle = 0.5 * std::atan2(2 * a[p][q], a[q][q] - a[p][p]), c = std::cos(angle),
                     s = std::sin(angle);
        const auto rotate = [&](double& first, double& second) {
            const double f = first, g = second;
            first = c * f - s * g;
            second = s * f + c * g;
        };
        for (int i = 0; i < 3; ++i) rotate(a[i][p], a[i][q]);
        for (int i = 0; i < 3; ++i) rotate(a[p][i], a[q][i]);
        for (int i = 0; i < 3; ++i) rotate(vectors[i][p], vectors[i][q]);
    }
}

/// Nine numbers a pixel: the matrix in its upper triangle, row by row, and the offset.
using GuidedModel = std::array<double, 9>;

class GuidedFilter {
public:
    GuidedFilter(const std::vector<unsigned char>& rgba, int width, int height, int radius)
        : m_rgba(rgba), m_width(width), m_height(height), m_radius(radius) {}

    std::vector<unsigned char> run(double exponent, double scale, double factor, bool smooth) const {
        std::vector<GuidedModel> models;
        for (int y = 0; y < m_height; ++y)
            for (int x = 0; x < m_width; ++x) models.push_back(model(x, y, exponent, scale, factor));
        std::vector<unsigned char> out;
        for (int y = 0; y < m_height; ++y)
            for (int x = 0; x < m_width; ++x) {
                GuidedModel m{};
                const int reach = smooth ? m_radius : 0;
                forWindow(x, y, reach, [&](std::size_t i) {
                    for (int k = 0; k < 9; ++k) m[k] += models[i][k] / ((2 * reach + 1) * (2 * reach + 1));
                });
                const unsigned char* p = &m_rgba[4 * index(x, y)];
                const int rows[3][3] = {{0, 1, 2}, {1, 3, 4}, {2, 4, 5}};
                for (int c = 0; c < 3; ++c) {
                    double value = m[6 + c] + 0.5;
                    for (int k = 0; k < 3; ++k) value += m[rows[c][k]] * p[k];
                    out.push_back(static_cast<unsigned char>(std::clamp(value, 0.0, 255.0)));
                }
                out.push_back(255);
            }
        return out;
    }

private:
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(std::clamp(y, 0, m_height - 1) * m_width +
                                        std::clamp(x, 0, m_width - 1));
    }

    template <typename Visit>
    void forWindow(int x, int y, int radius, const Visit& visit) const {
        for (int dy = -radius; dy <= radius; ++dy)
            for (int dx = -radius; dx <= radius; ++dx) visit(index(x + dx, y + dy));
    }

    GuidedModel model(int x, int y, double exponent, double scale, double factor) const {
        std::array<double, 3> mean{};
        Matrix3 c{}, vectors;
        const double share = 1.0 / ((2 * m_radius + 1) * (2 * m_radius + 1));
        forWindow(x, y, m_radius, [&](std::size_t i) {
            for (int k = 0; k < 3; ++k) mean[k] += share * m_rgba[4 * i + k];
        });
        forWindow(x, y, m_radius, [&](std::size_t i) {
            for (int k = 0; k < 3; ++k)
                for (int l = 0; l < 3; ++l)
                    c[k][l] += share * (m_rgba[4 * i + k] - mean[k]) * (m_rgba[4 * i + l] - mean[l]);
        });
        diagonalise(c, vectors);
        Matrix3 a{};
        for (int e = 0; e < 3; ++e) {
            const double t = std::pow(std::max(c[e][e], 1e-6), exponent),
                         s = std::pow(65025.0, exponent) * scale;
            for (int k = 0; k < 3; ++k)
                for (int l = 0; l < 3; ++l)
                    a[k][l] += (s * factor + t) / (s + t) * vectors[k][e] * vectors[l][e];
        }
        GuidedModel m = {a[0][0], a[0][1], a[0][2], a[1][1], a[1][2], a[2][2]};
        for (int k = 0; k < 3; ++k)
            m[6 + k] = mean[k] - a[k][0] * mean[0] - a[k][1] * mean[1] - a[k][2] * mean[2];
        return m;
    }

    const std::vector<unsigned char>& m_rgba;
    int m_width, m_height, m_radius;
};

}  // namespace slow
