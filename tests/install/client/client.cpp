#include <zel_effects.h>

#include <cstdio>
#include <cstdlib>

int main(int count, char** arguments) {
    int width = 0, height = 0, channels = 0;
    unsigned char* pixels = ZelImageCore::StbImageUtil::loadImageFromFile(
        count > 1 ? arguments[1] : "", width, height, channels, false, true, 0, false, nullptr);
    if (!pixels) return EXIT_FAILURE;
    ZelImageCore::TableSkin::ImageProcessWithNatureSmooth(pixels, width, height, 12);
    ZelImageCore::TableSkin::ImageProcessWithQornSkinRetouch(pixels, width, height, 0.7f, nullptr, nullptr);

    zellab::Vector2f landmarks[83] = {};  // in pixels, from a face detector
    zellab::CInterFacePoint faces;
    faces.AddFace(landmarks, 0);
    faces.SetFaceCount(1);
    std::printf("%d x %d pixels, %d face", width, height, faces.GetFaceCount());

    // The library opens its inference module for this, wherever the two were put.
    DefocusCore::ZelDepthDefocusRender render;
    render.setResourcePath(count > 2 ? arguments[2] : "", "");
    std::printf(", %s network\n", render.Init(true) ? "a" : "no");
    std::free(pixels);
}
