#pragma once

#include <memory>

#include "bokeh/renderPasses.h"

namespace zellab::Bokeh {

/// What draws a render.
enum class BackEnd { openGl, processor };

/// The better of the two on this thread: OpenGL where the current context is one of a graphics card; a driver
/// that itself runs on the processor does the same work more slowly than the processor's own loops.
BackEnd bestBackEnd();

std::unique_ptr<RenderPasses> makePasses(BackEnd backEnd);

/// Whether the driver of the current context is a software rasteriser.
bool rendersOnProcessor();
/// The same from what a driver calls itself; null is no software.
bool isSoftwareRenderer(const char* name);

}  // namespace zellab::Bokeh
