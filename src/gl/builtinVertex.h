#pragma once

namespace zellab::Bokeh {

/// Vertex shader of key 0: passes the quad and its texture coordinates on. The version line comes before it.
extern const char* const kBuiltinVertex;

}  // namespace zellab::Bokeh
