#include "zellab/geometry/linearSolve.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zellab {

namespace {

/// Rows of doubles at a distance in bytes.
class Rows {
public:
    Rows(double* data, std::size_t rowBytes)
        : m_data(reinterpret_cast<unsigned char*>(data)), m_bytes(rowBytes) {}
    double* operator[](int row) const {
        return reinterpret_cast<double*>(m_data + static_cast<std::size_t>(row) * m_bytes);
    }

private:
    unsigned char* m_data;
    std::size_t m_bytes;
};

/// The row at or below `column` with the largest absolute value there; the first one wins a tie.
int pivotRow(const Rows& a, int column, int n) {
    int pivot = column;
    for (int row = column + 1; row < n; ++row)
        if (std::fabs(a[row][column]) > std::fabs(a[pivot][column])) pivot = row;
    return pivot;
}

void substituteBack(const Rows& a, const Rows& b, int n, int columns) {
    for (int row = n - 1; row >= 0; --row)
        for (int c = 0; c < columns; ++c) {
            double sum = b[row][c];
            for (int k = row + 1; k < n; ++k) sum -= a[row][k] * b[k][c];
            b[row][c] = sum / a[row][row];
        }
}

}  // namespace

int SolveLinearGauss(double* matrix, std::size_t rowBytes, int n, double* rhs, std::size_t rhsRowBytes,
                     int rhsColumns) {
    const Rows a(matrix, rowBytes), b(rhs, rhsRowBytes);
    for (int i = 0; i < n; ++i) {
        const int pivot = pivotRow(a, i, n);
        if (std::fabs(a[pivot][i]) < std::numeric_limits<double>::epsilon()) return 0;
        if (pivot != i) {
            std::swap_ranges(a[i] + i, a[i] + n, a[pivot] + i);
            std::swap_ranges(b[i], b[i] + rhsColumns, b[pivot]);
        }
        const double multiplier = -1.0 / a[i][i];
        for (int row = i + 1; row < n; ++row) {
            const double factor = a[row][i] * multiplier;
            for (int k = i + 1; k < n; ++k) a[row][k] += factor * a[i][k];
            for (int c = 0; c < rhsColumns; ++c) b[row][c] += factor * b[i][c];
        }
    }
    substituteBack(a, b, n, rhsColumns);
    return 1;
}

bool TriangleAffineMap(float* out, const float* from, const float* to) {
    constexpr int kUnknowns = 6;
    double matrix[kUnknowns][kUnknowns] = {};
    double rhs[kUnknowns];
    for (int point = 0; point < 3; ++point)
        for (int axis = 0; axis < 2; ++axis) {
            double* row = matrix[2 * point + axis] + 3 * axis;
            row[0] = static_cast<double>(from[2 * point]);
            row[1] = static_cast<double>(from[2 * point + 1]);
            row[2] = 1.0;
            rhs[2 * point + axis] = static_cast<double>(to[2 * point + axis]);
        }
    const int solved = SolveLinearGauss(matrix[0], sizeof matrix[0], kUnknowns, rhs, sizeof rhs[0], 1);
    for (int i = 0; i < kUnknowns; ++i) out[i] = static_cast<float>(rhs[i]);
    out[6] = out[7] = 0.0f;
    out[8] = 1.0f;
    return solved != 0;
}

}  // namespace zellab
