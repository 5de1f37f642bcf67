#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <ostream>
#include <vector>

#include "frame/processorCount.h"
#include "platform/simdLevel.h"
#include "support/randomImage.h"
#include "zellab/imageproc/core/imageView.h"

namespace zeltest {

/// Runs `check` under every worker count and instruction set. No result may depend on either, so `check`
/// compares with one expectation.
template <typename Check>
void onEveryMachine(const Check& check) {
    using zellab::platform::SimdLevel;
    for (const SimdLevel level : {SimdLevel::baseline, SimdLevel::avx2})
        for (const int workers : {1, 2, 3, 5, 8}) {
            SCOPED_TRACE(testing::Message()
                         << workers << " workers, instruction set " << static_cast<int>(level));
            const zellab::WorkerCount count(workers);
            const zellab::platform::SimdLimit limit(level);
            check();
            if (testing::Test::HasFailure()) return;
        }
}

/// Runs `operation` (which returns its result) on one worker at the baseline, then everywhere, and expects
/// the same result each time.
template <typename Operation>
void expectSameOnEveryMachine(const Operation& operation) {
    const auto expected = [&] {
        const zellab::WorkerCount count(1);
        const zellab::platform::SimdLimit limit(zellab::platform::SimdLevel::baseline);
        return operation();
    }();
    onEveryMachine([&] { EXPECT_TRUE(operation() == expected); });
}

struct Size {
    int width, height;
    int pixels() const { return width * height; }
    friend std::ostream& operator<<(std::ostream& out, Size size) {
        return out << size.width << " by " << size.height;
    }
};

/// Tightly packed samples as a picture or a plane.
inline zellab::ImageView rgbaView(Bytes& samples, Size size) {
    return {samples.data(), size.width, size.height};
}
inline zellab::PlaneView<unsigned char> planeView(Bytes& samples, Size size) {
    return {samples.data(), size.width, size.height};
}

/// Sizes at which loops go wrong first: one pixel, one row, one column, odd, around a vector's width.
inline const std::vector<Size> kAwkwardSizes = {{1, 1}, {1, 9},  {13, 1}, {2, 2},   {2, 5},   {3, 4},
                                                {7, 3}, {16, 8}, {17, 5}, {33, 31}, {5, 130}, {67, 41}};

/// Compares buffers of equal shape; a failure names the first sample that differs.
template <typename Samples>
testing::AssertionResult sameSamples(const Samples& expected, const Samples& actual, int samplesPerRow) {
    if (expected.size() != actual.size())
        return testing::AssertionFailure() << expected.size() << " samples, not " << actual.size();
    const auto at = std::mismatch(expected.begin(), expected.end(), actual.begin());
    if (at.first == expected.end()) return testing::AssertionSuccess();
    const auto index = at.first - expected.begin();
    std::size_t differing = 0;
    for (std::size_t i = 0; i < expected.size(); ++i) differing += expected[i] != actual[i];
    return testing::AssertionFailure()
           << "row " << index / samplesPerRow << ", sample " << index % samplesPerRow << ": expected "
           << +*at.first << ", got " << +*at.second << "; " << differing << " differ";
}

/// Holds an operation to its slow form, both in place on copies of `picture`, everywhere. `what` tells a case
/// from the others; after a failure nothing more is compared.
template <typename SlowForm, typename Operation, typename... What>
void compareWithSlow(Size size, const Bytes& picture, const SlowForm& slowForm, const Operation& operation,
                     const What&... what) {
    if (testing::Test::HasFailure()) return;
    testing::Message trace;
    trace << size;
    ((trace << ", " << what), ...);
    SCOPED_TRACE(trace);
    Bytes expected = picture;
    slowForm(expected);
    onEveryMachine([&] {
        Bytes actual = picture;
        operation(actual);
        ASSERT_TRUE(sameSamples(expected, actual, static_cast<int>(picture.size()) / size.height));
    });
}

}  // namespace zeltest
