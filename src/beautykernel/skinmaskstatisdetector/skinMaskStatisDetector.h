#pragma once

#include "beautykernel/skinmaskstatisdetector/skinFaceRecord.h"
#include "zellab/imageproc/poisson/markedBox.h"

namespace zelbeauty {

/// The skin model: statistics of the faces, a chroma map around their colour and a weight by brightness, so
/// that each pixel costs two table reads.
class SkinMaskStatisDetector {
public:
    /// Writes the map, and, where the three out pointers are given, the mean of the sure skin of the first
    /// face (0 with no face; left alone where no pixel is sure).
    static void Detect(const unsigned char* planeY, const unsigned char* planeCb,
                       const unsigned char* planeCr, int width, int height, unsigned char* mask,
                       int faceCount, const SkinFaceRecord* faces, unsigned char* outY, unsigned char* outCb,
                       unsigned char* outCr, bool altTable);

    /// The map of one face within a box of the picture, which holds at least areaRead().
    static void DetectWithin(const zellab::PixelBox& box, const unsigned char* planeY,
                             const unsigned char* planeCb, const unsigned char* planeCr, int width,
                             int height, unsigned char* mask, const SkinFaceRecord& face);

    /// The box that holds every pixel that is read to learn from a face.
    static zellab::PixelBox areaRead(int width, int height, const SkinFaceRecord& face);

    /// Measures one face: mean colour of its bright pixels and the range of brightness that counts as skin.
    /// All five are 0, with a line in the log, where the box or the patch below the eyes is empty.
    static void GetFaceColorYuv(const unsigned char* planeY, const unsigned char* planeCb,
                                const unsigned char* planeCr, int width, int height,
                                const SkinFaceRecord& face, int& outY, int& outCb, int& outCr, int& outLow,
                                int& outHigh);
};

}  // namespace zelbeauty
