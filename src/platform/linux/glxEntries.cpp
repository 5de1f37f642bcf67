// The three functions of GLX that the extension loader's static library is linked against. Answered here,
// they keep the product free of any OpenGL library at link time; the loader then resolves everything through
// EGL.
#include <cstring>

#include "platform/glPlatform.h"

extern "C" {

void* glXGetProcAddressARB(const unsigned char* name);
const char* glXGetClientString(void* display, int name);
int glXQueryVersion(void* display, int* major, int* minor);

// The loader asks for the display of GLX last; without one it stops there, with everything of OpenGL loaded.
static void* noDisplay() {
    return nullptr;
}

void* glXGetProcAddressARB(const unsigned char* name) {
    const char* text = reinterpret_cast<const char*>(name);
    if (std::strncmp(text, "glX", 3) == 0) return reinterpret_cast<void*>(&noDisplay);
    return zellab::platform::glEntryPoint(text);
}

const char* glXGetClientString(void*, int) {
    return nullptr;
}

int glXQueryVersion(void*, int*, int*) {
    return 0;
}
}
