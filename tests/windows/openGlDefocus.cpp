// Depth of field of the C++ operations in an OpenGL context of the host's own, with depth from a file, so that no network
// takes part. Built for two systems, it tells whether their contexts draw the same.
// Usage: openGlDefocus PORTRAIT DEPTH ASSETS OUT.ppm
#include <offscreenContext.h>

#include <string>
#include <vector>

#include "picture.h"
#include "ppm.h"
#include "windowsRand.h"

int main(int argc, char** argv) {
    if (argc != 5) return std::fprintf(stderr, "usage: openGlDefocus PORTRAIT DEPTH ASSETS OUT.ppm\n"), 2;
    const std::string bokeh = std::string(argv[3]) + "/bokeh", shapeFile = bokeh + "/defocus_hexagon.png";
    Picture picture(argv[1]), depth(argv[2]), shape(shapeFile.c_str());
    if (!picture || !depth || !shape) return std::fprintf(stderr, "a picture cannot be read\n"), 1;
    std::vector<unsigned char> plane(static_cast<std::size_t>(depth.width) *
                                     static_cast<std::size_t>(depth.height));
    for (std::size_t i = 0; i < plane.size(); ++i) plane[i] = depth.pixels.get()[4 * i];

    DefocusCore::ZelDepthDefocusRender render;
    render.setResourcePath(argv[3], bokeh.c_str());
    render.SetBokehImage("defocus_hexagon", shape.pixels.get(), shape.width, shape.height);
    render.SetDepthPlane(plane.data(), depth.width, depth.height);
    const zellab::OffscreenContext context;
    if (!context.isCurrent()) return std::fprintf(stderr, "no OpenGL: %s failed\n", context.failedCall()), 1;

    std::srand(1);
    float face[] = {0.3f, 0.2f, 0.4f, 0.4f};
    render.Run(picture.pixels.get(), picture.width, picture.height, 1, face, 0.5f, 0.4f, /*blurLevel=*/60,
               /*highlights=*/1.0f, /*useHairMask=*/false, /*hasCurrentContext=*/true, /*amount=*/1.0f,
               /*intensity=*/0.5f, /*vivid=*/0.0f);
    if (render.LastOutcome() != DefocusCore::ZelDepthDefocusRender::Outcome::drawn)
        return std::fprintf(stderr, "outcome %d\n", static_cast<int>(render.LastOutcome())), 1;
    return writePpm(argv[4], picture.pixels.get(), picture.width, picture.height) ? 0 : 1;
}
