#include "ridge.h"

#include <algorithm>
#include <cmath>

namespace zeltrain {

namespace {

using zel::kDescriptorSize;
using Column = std::vector<float>;

constexpr int kLevels = 44;       // weights are -kLevels to kLevels
constexpr float kClipped = 4.5f;  // deviations of a row's weights that the levels span

/// Sums of products in lanes, so that the compiler may use vectors.
float product(const float* a, const float* b, std::size_t count) {
    float lanes[16] = {0};
    const std::size_t whole = count - count % 16;
    for (std::size_t i = 0; i < whole; i += 16)
        for (std::size_t l = 0; l < 16; ++l) lanes[l] += a[i + l] * b[i + l];
    float sum = 0;
    for (const float lane : lanes) sum += lane;
    for (std::size_t i = whole; i < count; ++i) sum += a[i] * b[i];
    return sum;
}

/// Descriptors as columns with their means taken out.
std::vector<Column> centredColumns(const Samples& samples, std::vector<float>& means) {
    std::vector<Column> columns(kDescriptorSize);
    means.assign(kDescriptorSize, 0.0f);
    forEach(kDescriptorSize, [&](std::size_t i) {
        Column column(samples.count);
        double sum = 0;
        for (std::size_t s = 0; s < samples.count; ++s) {
            column[s] = samples.descriptors[s * kDescriptorSize + i];
            sum += column[s];
        }
        means[i] = static_cast<float>(sum / static_cast<double>(samples.count));
        for (float& v : column) v -= means[i];
        columns[i] = std::move(column);
    });
    return columns;
}

/// Lower triangle of the columns' products, in tiles that stay in the cache.
std::vector<Column> products(const std::vector<Column>& columns, std::size_t samples) {
    constexpr std::size_t kTile = 48, kRun = 1024;
    std::vector<Column> matrix(kDescriptorSize);
    for (std::size_t i = 0; i < kDescriptorSize; ++i) matrix[i].assign(i + 1, 0.0f);
    const std::size_t tiles = (kDescriptorSize + kTile - 1) / kTile;
    forEach(tiles * tiles, [&](std::size_t tile) {
        const std::size_t top = tile / tiles * kTile, left = tile % tiles * kTile;
        if (left > top) return;
        for (std::size_t run = 0; run < samples; run += kRun)
            for (std::size_t i = top; i < std::min(top + kTile, kDescriptorSize); ++i)
                for (std::size_t j = left; j < std::min(left + kTile, i + 1); ++j)
                    matrix[i][j] += product(columns[i].data() + run, columns[j].data() + run,
                                            std::min(kRun, samples - run));
    });
    return matrix;
}

/// Replaces the matrix by its Cholesky factor, column by column.
void factorise(std::vector<Column>& matrix) {
    for (std::size_t j = 0; j < matrix.size(); ++j) {
        const float pivot = matrix[j][j] - product(matrix[j].data(), matrix[j].data(), j);
        matrix[j][j] = std::sqrt(std::max(pivot, 1e-6f));
        for (std::size_t i = j + 1; i < matrix.size(); ++i)
            matrix[i][j] = (matrix[i][j] - product(matrix[i].data(), matrix[j].data(), j)) / matrix[j][j];
    }
}

Column solve(const std::vector<Column>& factor, Column right) {
    const std::size_t n = factor.size();
    for (std::size_t i = 0; i < n; ++i)
        right[i] = (right[i] - product(factor[i].data(), right.data(), i)) / factor[i][i];
    for (std::size_t i = n; i-- > 0;) {
        right[i] /= factor[i][i];
        for (std::size_t j = 0; j < i; ++j) right[j] -= factor[i][j] * right[i];
    }
    return right;
}

/// One row of weights, rounded; the bias makes up for the means.
void addRow(zel::LinearMap& map, const Column& weights, const std::vector<float>& means, float valueMean) {
    const float deviation = std::sqrt(product(weights.data(), weights.data(), weights.size()) /
                                      static_cast<float>(weights.size()));
    const float factor = std::max(kClipped * deviation, 1e-12f) / kLevels;
    float atMean = 0;
    for (std::size_t i = 0; i < weights.size(); ++i) {
        const float level = std::clamp(std::round(weights[i] / factor), -1.0f * kLevels, 1.0f * kLevels);
        map.weights.push_back(static_cast<std::int8_t>(level));
        atMean += factor * level * means[i];
    }
    map.factor.push_back(factor);
    map.bias.push_back(valueMean - atMean);
    ++map.rows;
}

}  // namespace

zel::LinearMap fitRidge(const Samples& samples, float ridge) {
    std::vector<float> means;
    const auto columns = centredColumns(samples, means);
    auto matrix = products(columns, samples.count);
    double trace = 0;
    for (std::size_t i = 0; i < matrix.size(); ++i) trace += matrix[i][i];
    for (std::size_t i = 0; i < matrix.size(); ++i)
        matrix[i][i] += ridge * static_cast<float>(trace / static_cast<double>(matrix.size()));
    factorise(matrix);

    zel::LinearMap map;
    for (std::size_t t = 0; t < samples.targets; ++t) {
        Column values(samples.count);
        for (std::size_t s = 0; s < samples.count; ++s) values[s] = samples.values[s * samples.targets + t];
        double mean = 0;
        for (const float v : values) mean += v;
        mean /= static_cast<double>(samples.count);
        Column right(kDescriptorSize);
        for (std::size_t i = 0; i < kDescriptorSize; ++i)
            right[i] = product(columns[i].data(), values.data(), samples.count);
        addRow(map, solve(matrix, right), means, static_cast<float>(mean));
    }
    return map;
}

}  // namespace zeltrain
