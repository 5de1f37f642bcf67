// Libraries that end the process where memory is short must not be reached then.
#include "zellab/imageproc/core/memoryReserve.h"

#include <gtest/gtest.h>

#include <functional>

#include "frame/processorCount.h"
#include "support/shortMemory.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/poisson/sineSolver.h"
#include "zellab/imageproc/sfdsp/yuvScale.h"

namespace {

using zeltest::ShortOfMemory;

/// Runs the body with ever more spare memory, from none until it is enough, in steps below the sizes of the
/// allocations in question.
void expectRefusals(std::size_t step, std::size_t enough, const std::function<void()>& body) {
    if (!zeltest::kCanStarve) GTEST_SKIP() << "a sanitizer owns the address space";
    const zellab::WorkerCount alone(1);
    bool refused = false;
    ShortOfMemory last = ShortOfMemory::refused;
    for (std::size_t spare = 0; spare <= enough && last != ShortOfMemory::done; spare += step) {
        last = zeltest::inShortMemory(spare, body);
        ASSERT_NE(last, ShortOfMemory::died) << spare << " bytes to spare";
        refused = refused || last == ShortOfMemory::refused;
    }
    EXPECT_TRUE(refused);
    EXPECT_EQ(last, ShortOfMemory::done);
}

TEST(ShortMemory, SineTransformsAreRefusedAndNeverEndTheProcess) {
    expectRefusals(std::size_t{32} << 10, std::size_t{8} << 20, [] {
        const zellab::SineSolver solver(509, 307);  // sides without small factors, which need most
        const auto samples = solver.makeSamples();
        solver.solve(samples.get());
    });
}

TEST(ShortMemory, ScalersAreRefusedAndNeverEndTheProcess) {
    // Rows of 32,000 pixels, which the scaler keeps two of.
    zellab::RgbaImage wide(32000, 4), narrow(20000, 3);
    zellab::Plane<unsigned char> plane(32000, 4), small(20000, 3);
    expectRefusals(std::size_t{32} << 10, std::size_t{3} << 20, [&] {
        zellab::scaleArgb(wide.view(), narrow.view(), zellab::YuvFilter::bilinear);
        zellab::scaleArgb(narrow.view(), wide.view(), zellab::YuvFilter::box);
        zellab::scalePlane(plane.view(), small.view(), zellab::YuvFilter::bilinear);
        zellab::scalePlane(small.view(), plane.view(), zellab::YuvFilter::box);
    });
}

}  // namespace
