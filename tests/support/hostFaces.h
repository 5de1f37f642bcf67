#pragma once

#include "support/everyMachine.h"
#include "support/standardFace.h"
#include "zel_effects/zel_effects.h"

namespace zeltest {

/// Faces as a host hands them over: the first in the middle of the picture, more of them reach out of it.
struct HostFaces {
    struct {
        ImageCoreFaceInfo head{};
        ImageCoreFace faces[3]{};
    } record;
    HostFaces(Size size, int count) {
        record.head.faceCount = count;
        const auto w = static_cast<float>(size.width), h = static_cast<float>(size.height);
        for (int f = 0; f < 3; ++f) {
            const auto points = standardFace(0.5f * w, 0.5f * h, 0.3f * w * static_cast<float>(f + 1));
            for (std::size_t i = 0; i < points.size(); ++i)
                record.faces[f].points[i][0] = points[i].x / w,
                record.faces[f].points[i][1] = points[i].y / h;
            const float rect[] = {0.15f, 0.1f, 0.7f, 0.8f};
            std::copy(rect, rect + 4, record.faces[f].rect);
        }
    }
    ImageCoreFaceInfo* info() { return &record.head; }
};

}  // namespace zeltest
