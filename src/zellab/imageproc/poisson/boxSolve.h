#pragma once

#include "frame/processorCount.h"
#include "zellab/imageproc/core/imageView.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/core/pixelMath.h"
#include "zellab/imageproc/poisson/sineSolver.h"

namespace zellab {

/// Replaces red, green and blue of the interior of `patch` by the solution of the Poisson equation whose
/// right side is divergence(x, y, channel) and whose border line is that of the patch. `rounding` is added
/// before the result is limited and truncated to a byte. A patch without interior stays as it is. The
/// divergence may read the patch: a channel is written only after its right side is complete.
template <typename Divergence>
void solveInterior(ImageView patch, float rounding, const Divergence& divergence) {
    constexpr int kColours = 3;
    const int w = patch.width, h = patch.height;
    if (w < 3 || h < 3) return;
    const SineSolver solver(w, h);
    runTasks(kColours, ProcessorCount(), [&](int channel) {
        const SineSolver::Samples samples = solver.makeSamples();
        float* side = samples.get();
        for (int y = 1; y < h - 1; ++y)
            for (int x = 1; x < w - 1; ++x) {
                int value = divergence(x, y, channel);
                if (x == 1) value -= patch.at(0, y)[channel];
                if (x == w - 2) value -= patch.at(w - 1, y)[channel];
                if (y == 1) value -= patch.at(x, 0)[channel];
                if (y == h - 2) value -= patch.at(x, h - 1)[channel];
                *side++ = static_cast<float>(value);
            }
        solver.solve(samples.get());
        const float* solved = samples.get();
        for (int y = 1; y < h - 1; ++y) {
            Byte* row = patch.row(y) + channel;
            for (int x = 1; x < w - 1; ++x) row[4 * x] = truncateToByte(*solved++ + rounding);
        }
    });
}

}  // namespace zellab
