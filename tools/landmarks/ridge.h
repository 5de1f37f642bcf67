#pragma once

#include <vector>

#include "libzel/faces/landmarkModel.h"

namespace zeltrain {

/// Rows of samples: descriptors and what is to be foretold of each.
struct Samples {
    std::size_t count = 0, targets = 0;
    std::vector<float> descriptors;  // count x kDescriptorSize
    std::vector<float> values;       // count x targets
};

/// The linear map with the least squares, its weights held small by `ridge` (a share of the descriptors' mean
/// variance), rounded to the levels of the table.
zel::LinearMap fitRidge(const Samples& samples, float ridge);

/// Runs work(i) for i of 0 to count on all processors.
template <typename Work>
void forEach(std::size_t count, const Work& work);

}  // namespace zeltrain

#include <atomic>
#include <thread>

template <typename Work>
void zeltrain::forEach(std::size_t count, const Work& work) {
    std::atomic<std::size_t> next{0};
    const auto some = [&] {
        for (std::size_t i; (i = next++) < count;) work(i);
    };
    std::vector<std::thread> helpers;
    for (unsigned t = 1; t < std::max(1u, std::thread::hardware_concurrency()); ++t)
        helpers.emplace_back(some);
    some();
    for (auto& helper : helpers) helper.join();
}
