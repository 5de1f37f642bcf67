#include "libzel/faces/landmarkModel.h"

namespace zel {

namespace {

/// Made by tools/landmarks/trainLandmarks; its command line stands there.
const char* const kLines[] = {
#include "landmarkTable.inc"
};

}  // namespace

const LandmarkModel& landmarkModel() {
    static const LandmarkModel model = decodeModel(kLines, std::size(kLines));
    return model;
}

}  // namespace zel
