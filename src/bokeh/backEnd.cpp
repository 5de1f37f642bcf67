#include "bokeh/backEnd.h"

#include <algorithm>
#include <array>
#include <string>

#include "bokeh/glPasses.h"
#include "bokeh/processorPasses.h"
#include "gl/glApi.h"

namespace zellab::Bokeh {

BackEnd bestBackEnd() {
    return gl::glUsable() && !rendersOnProcessor() ? BackEnd::openGl : BackEnd::processor;
}

std::unique_ptr<RenderPasses> makePasses(BackEnd backEnd) {
    if (backEnd == BackEnd::processor) return std::make_unique<ProcessorPasses>();
    return std::make_unique<GlPasses>();
}

bool isSoftwareRenderer(const char* name) {
    if (!name) return false;
    std::string lower(name);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    constexpr std::array kSoftware = {"llvmpipe",
                                      "softpipe",
                                      "swr",
                                      "software rasterizer",
                                      "swiftshader",
                                      "gdi generic",
                                      "microsoft basic render driver"};
    return std::any_of(kSoftware.begin(), kSoftware.end(),
                       [&](const char* software) { return lower.find(software) != std::string::npos; });
}

bool rendersOnProcessor() {
    return gl::glUsable() &&
           isSoftwareRenderer(reinterpret_cast<const char*>(gl::glCore().getString(GL_RENDERER)));
}

}  // namespace zellab::Bokeh
