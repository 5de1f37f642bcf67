// Narrows a face and opens its eyes by landmarks of the host's own face finder: a text file of 83 lines
// "x y" in pixels, in the library's order.
// Usage: reshape PORTRAIT LANDMARKS.txt OUT.ppm
#include <fstream>
#include <vector>

#include "picture.h"
#include "ppm.h"

int main(int argc, char** argv) {
    if (argc != 4) return std::fprintf(stderr, "usage: reshape PORTRAIT LANDMARKS.txt OUT.ppm\n"), 2;
    Picture picture(argv[1]);
    if (!picture) return std::fprintf(stderr, "%s cannot be read\n", argv[1]), 1;

    std::vector<zellab::Vector2f> landmarks(zellab::CInterFacePoint::kLandmarkCount);
    std::ifstream file(argv[2]);
    for (zellab::Vector2f& point : landmarks) file >> point.x >> point.y;
    if (!file) return std::fprintf(stderr, "%s does not hold 83 points\n", argv[2]), 1;

    // One object holds the faces of one picture and derives the denser points that the effects follow.
    zellab::CInterFacePoint faces;
    faces.AddFace(landmarks.data(), 0);
    faces.SetFaceCount(1);

    unsigned char* const pixels = picture.pixels.get();
    CFaceSlimRender::autoSlimFace(pixels, picture.width, picture.height, &faces, 0.7f, 0);
    CEyeZoomRender::autoZoomEye(pixels, picture.width, picture.height, &faces, 0.5f, 0);

    return writePpm(argv[3], pixels, picture.width, picture.height) ? 0 : 1;
}
