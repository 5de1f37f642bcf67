// Blurs what lies behind a person, in an OpenGL context of the host's own. ASSETS is the library's asset
// folder: the depth network stands in depth/, the shaders and the shapes of bokeh in bokeh/.
// Usage: depthOfField PORTRAIT ASSETS OUT.ppm
#include <offscreenContext.h>

#include <string>

#include "picture.h"
#include "ppm.h"

int main(int argc, char** argv) {
    if (argc != 4) return std::fprintf(stderr, "usage: depthOfField PORTRAIT ASSETS OUT.ppm\n"), 2;
    const std::string assets = argv[2], bokeh = assets + "/bokeh", shapeFile = bokeh + "/defocus_hexagon.png";
    Picture picture(argv[1]), shape(shapeFile.c_str());
    if (!picture) return std::fprintf(stderr, "%s cannot be read\n", argv[1]), 1;
    if (!shape) return std::fprintf(stderr, "%s cannot be read\n", shapeFile.c_str()), 1;

    DefocusCore::ZelDepthDefocusRender render;
    render.setResourcePath((assets + "/depth").c_str(), bokeh.c_str());
    if (!render.Init(true)) return std::fprintf(stderr, "no depth network in %s/depth\n", argv[2]), 1;
    render.SetBokehImage("defocus_hexagon", shape.pixels.get(), shape.width, shape.height);
    render.DepthEstimate(picture.pixels.get(), picture.width, picture.height, nullptr, 0, 0);
    render.Release();  // the network; the depth stays

    // A host that draws with OpenGL has a context already and needs none of this.
    const zellab::OffscreenContext context;
    if (!context.isCurrent()) return std::fprintf(stderr, "no OpenGL: %s failed\n", context.failedCall()), 1;

    float face[] = {0.3f, 0.2f, 0.4f, 0.4f};  // x, y, width, height as fractions of the picture
    render.Run(picture.pixels.get(), picture.width, picture.height, 1, face, 0.5f, 0.4f, /*blurLevel=*/60,
               /*highlights=*/1.0f, /*useHairMask=*/false, /*hasCurrentContext=*/true, /*amount=*/1.0f,
               /*intensity=*/0.5f, /*vivid=*/0.0f);
    const bool rendered = render.LastOutcome() == DefocusCore::ZelDepthDefocusRender::Outcome::drawn;
    return rendered && writePpm(argv[3], picture.pixels.get(), picture.width, picture.height) ? 0 : 1;
}
