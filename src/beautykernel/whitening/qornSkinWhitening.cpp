// The exported whitening that knows faces.
#include <cmath>
#include <cstring>

#include "beautykernel/eyebright/eyeBright.h"
#include "beautykernel/skintools/skinOperation.h"
#include "facepoints/faceData.h"
#include "zel_effects/zel_effects.h"
#include "zellab/imageproc/core/ownedImage.h"
#include "zellab/imageproc/tone/levels.h"
#include "zellab/imageproc/tone/toneBlend.h"

void ZelImageCore::TableSkin::ImageProcessWithQornSkinWhitening(unsigned char* image, int width, int height,
                                                                float* params, ImageCoreFaceInfo* faceInfo,
                                                                unsigned char* mask,
                                                                unsigned char* prepared) {
    using namespace zellab;
    const ImageView picture(image, width, height);
    if (!picture.valid() || !params || std::isnan(params[0]) || std::isnan(params[1])) return;
    const float level = params[0], temperature = params[1];
    const RgbaImage before = mask ? copyOf(picture) : RgbaImage();
    if (prepared) {
        // The prepared picture may be the picture itself.
        std::memmove(image, prepared, sampleCount(width, height, 4));
    } else {
        CInterFacePoint points;
        addLimitedFaces(points, faceInfo, width, height);
        AutoLevels(picture);
        brightenEyes(picture, facePointsAt(&points, 0));
    }
    mapPixels(picture, brightnessCurve(brightnessHeight(level)));
    ColorTemperatureBlend(picture, temperature, 0);
    if (mask) mixByMask(picture, before.view(), {mask, width, height});
}
