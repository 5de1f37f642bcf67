#pragma once

#include <array>
#include <string>
#include <vector>

#include "zel_effects/zel_records.h"

namespace zeltrain {

/// A drawn portrait as the fit sees it: luma, and the true landmarks in pixels.
struct TrainingPicture {
    int width = 0, height = 0;
    std::vector<unsigned char> luma;
    std::array<zellab::Vector2f, 83> points{};
};

/// Draws `count` portraits from the seeds `firstSeed` on. Where `keptAs` names a file, the set is read from
/// it if it is there with as many pictures, and written to it otherwise: drawing takes most of a training
/// run.
std::vector<TrainingPicture> drawTrainingSet(unsigned firstSeed, std::size_t count,
                                             const std::string& keptAs);

}  // namespace zeltrain
