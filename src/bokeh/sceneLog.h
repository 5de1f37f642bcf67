#pragma once

#include "gl/glLog.h"

namespace zellab::Bokeh {

/// The scene module's log.
gl::RendererLog& sceneLog();

}  // namespace zellab::Bokeh
