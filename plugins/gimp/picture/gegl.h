#pragma once

#include <gegl.h>

#include <memory>

namespace zelgimp {

struct ObjectUnref {
    void operator()(void* object) const { g_object_unref(object); }
};
/// A reference of our own to a buffer of the editor's pixels. What was written arrives when the last one goes.
using Buffer = std::unique_ptr<GeglBuffer, ObjectUnref>;

/// Width and height in pixels, at an origin in pixels of whatever it is told of.
inline GeglRectangle rectangle(int x, int y, int width, int height) {
    return {x, y, width, height};
}

}  // namespace zelgimp
