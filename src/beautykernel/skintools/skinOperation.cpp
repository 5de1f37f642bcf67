#include "beautykernel/skintools/skinOperation.h"

#include <algorithm>

#include "facepoints/faceData.h"
#include "zellab/imageproc/core/floatToInt.h"
#include "zellab/imageproc/core/parallelRows.h"
#include "zellab/imageproc/tone/sfCurve.h"

namespace zellab {

void addLimitedFaces(CInterFacePoint& points, const ImageCoreFaceInfo* faceInfo, int width, int height) {
    const auto limited = [](float v) { return v > 0.0f ? std::min(v, 1.0f) : 0.0f; };
    const int count = faceInfo ? std::max(faceInfo->faceCount, 0) : 0;
    points.SetFaceCount(count);
    for (int i = 0; i < std::max(count, 1); ++i) {
        ImageCoreFace face = count > 0 ? faceInfo->faces()[i] : ImageCoreFace{};
        for (auto& point : face.points)
            for (float& coordinate : point) coordinate = limited(coordinate);
        points.AddFace(landmarksInPixels(face, width, height).data(), i);
    }
}

ByteTable brightnessCurve(int height) {
    ByteTable table;
    CurveTableThreePoints(table, 130, height);
    return table;
}

int brightnessHeight(float level) {
    constexpr int kStep = 5, kBase = 137;
    constexpr int kFarthest = 400'000'000;  // the height of a wild level still fits
    return std::clamp(truncateToInt(level), -kFarthest, kFarthest) * kStep + kBase;
}

MixWeights::MixWeights(float share) {
    // Farther on, a mix of two different bytes leaves the range of bytes on the same side.
    constexpr int kFarthest = 1 << 20;
    effect = std::clamp(truncateToInt(share * 256.0f), -kFarthest, kFarthest);
    original = 256 - effect;
}

void mixByMask(ImageView image, ConstImageView before, PlaneView<const Byte> mask) {
    constexpr float kByteScale = 0.003921569f;
    parallelRows(image.height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            Byte* p = image.row(y);
            const Byte* from = before.row(y);
            for (int x = 0; x < image.width; ++x, p += 4, from += 4) {
                const float share = static_cast<float>(mask.row(y)[x]) * kByteScale;
                for (int c = 0; c < 3; ++c)
                    p[c] = truncateToByte(static_cast<float>(from[c]) * (1.0f - share) +
                                          static_cast<float>(p[c]) * share);
            }
        }
    });
}

}  // namespace zellab
