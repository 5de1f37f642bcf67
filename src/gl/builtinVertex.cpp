#include "gl/builtinVertex.h"

namespace zellab::Bokeh {

const char* const kBuiltinVertex = R"(layout(location = 0) in vec2 aPos;
layout(location = 1) in vec2 aTex;
out vec2 textureCoordinate;
void main() {
    gl_Position = vec4(aPos, 0., 1.);
    textureCoordinate = aTex;
}
)";

}  // namespace zellab::Bokeh
