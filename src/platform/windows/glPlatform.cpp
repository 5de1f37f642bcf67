// Contexts through WGL. Each has a hidden window of its own: on this system a context draws to a window's device
// context, also where it draws to textures alone.
#include "platform/glPlatform.h"

#include <windows.h>

#include <cstdint>

namespace zellab::platform {

namespace {

/// A wide name in the hands of narrow functions: the system knows the class by its first letter, "W", and so do
/// hosts that look for its windows.
const char* className() {
    return reinterpret_cast<const char*>(L"WndClass");
}

constexpr DWORD kWindowStyle = WS_POPUP | WS_CLIPCHILDREN | WS_CLIPSIBLINGS;
constexpr int kWindowSize = 32;

/// From the extension that makes contexts of a version.
constexpr int kMajorVersion = 0x2091, kMinorVersion = 0x2092, kProfileMask = 0x9126, kCoreProfile = 1;
using CreateContextAttribs = HGLRC(WINAPI*)(HDC, HGLRC, const int*);

HGLRC contextOf(const GlContext& context) {
    return static_cast<HGLRC>(context.context);
}
HDC deviceOf(const GlContext& context) {
    return static_cast<HDC>(context.display);
}
HWND windowOf(const GlContext& context) {
    return static_cast<HWND>(context.surface);
}

/// The library or program that holds this code, so that two of them have a window class each.
HINSTANCE thisModule() {
    static const char kHere = 0;
    HMODULE module = nullptr;
    GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       &kHere, &module);
    return module;
}

/// Once; later calls find the class there already. Its windows do nothing by themselves, so that the class outlives
/// this library where a host unloads it.
void registerWindowClass() {
    WNDCLASSEXA description{};
    description.cbSize = sizeof description;
    description.style = CS_VREDRAW | CS_HREDRAW | CS_DBLCLKS | CS_OWNDC;
    description.lpfnWndProc = DefWindowProcA;
    description.hInstance = thisModule();
    description.hCursor = LoadCursor(nullptr, IDC_ARROW);
    description.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    description.lpszClassName = className();
    RegisterClassExA(&description);
}

/// RGBA 32, depth 16, stencil 8.
bool setPixelFormat(HDC device) {
    PIXELFORMATDESCRIPTOR format{};
    format.nSize = sizeof format;
    format.nVersion = 1;
    format.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
    format.iPixelType = PFD_TYPE_RGBA;
    format.cColorBits = 32;
    format.cDepthBits = 16;
    format.cStencilBits = 8;
    format.iLayerType = PFD_MAIN_PLANE;
    const int chosen = ChoosePixelFormat(device, &format);
    return chosen != 0 && SetPixelFormat(device, chosen, &format);
}

/// While it lives a context is current on this thread; then what was current before is again.
class CurrentContext {
public:
    CurrentContext(HDC device, HGLRC context)
        : m_device(wglGetCurrentDC()), m_context(wglGetCurrentContext()) {
        wglMakeCurrent(device, context);
    }
    ~CurrentContext() { wglMakeCurrent(m_device, m_context); }
    CurrentContext(const CurrentContext&) = delete;
    CurrentContext& operator=(const CurrentContext&) = delete;

private:
    HDC m_device;
    HGLRC m_context;
};

/// An OpenGL 3.3 core context, or what the system makes without being told a version; null without OpenGL.
HGLRC createOn(HDC device) {
    const HGLRC plain = wglCreateContext(device);
    if (!plain) return nullptr;
    HGLRC core = nullptr;
    {
        // The function that makes other contexts is asked for in one.
        const CurrentContext current(device, plain);
        const auto create = reinterpret_cast<CreateContextAttribs>(
            reinterpret_cast<void*>(wglGetProcAddress("wglCreateContextAttribsARB")));
        constexpr int kWanted[] = {kMajorVersion, 3, kMinorVersion, 3, kProfileMask, kCoreProfile, 0};
        if (create) core = create(device, nullptr, kWanted);
    }
    if (!core) return plain;
    wglDeleteContext(plain);
    return core;
}

/// Fills what it makes into `made`; names the call that failed, or null.
const char* create(const GlContext* share, GlContext& made) {
    registerWindowClass();
    const HWND window = CreateWindowExA(0, className(), "", kWindowStyle, CW_USEDEFAULT, CW_USEDEFAULT,
                                        kWindowSize, kWindowSize, nullptr, nullptr, thisModule(), nullptr);
    made.surface = window;
    if (!window) return "CreateWindowEx";
    const HDC device = GetDC(window);
    made.display = device;
    if (!device) return "GetDC";
    if (!setPixelFormat(device)) return "SetPixelFormat";
    const HGLRC context = createOn(device);
    made.context = context;
    if (!context) return "wglCreateContext";
    return share && !wglShareLists(contextOf(*share), context) ? "wglShareLists" : nullptr;
}

}  // namespace

const char* glPlatformName() {
    return "WINDOWS";
}

GlCreation createGlContext(const GlContext* share) {
    GlCreation creation;
    creation.failedCall = create(share, creation.context);
    if (creation.failedCall) destroyGlContext(creation.context);
    return creation;
}

bool makeGlContextCurrent(const GlContext& context) {
    return context.display && wglMakeCurrent(deviceOf(context), contextOf(context));
}

void releaseCurrentGlContext() {
    wglMakeCurrent(nullptr, nullptr);
}

GlContext currentGlContext() {
    const HDC device = wglGetCurrentDC();
    return {wglGetCurrentContext(), device, device ? WindowFromDC(device) : nullptr};
}

void destroyGlContext(GlContext& context) {
    if (context.context) {
        if (wglGetCurrentContext() == context.context) releaseCurrentGlContext();
        wglDeleteContext(contextOf(context));
    }
    if (context.display) ReleaseDC(windowOf(context), deviceOf(context));
    if (context.surface) DestroyWindow(windowOf(context));
    context = {};
}

void* glEntryPoint(const char* name) {
    void* const function = reinterpret_cast<void*>(wglGetProcAddress(name));
    // Drivers say no in several ways, and always for what is in the system's own library.
    const auto number = reinterpret_cast<std::intptr_t>(function);
    if (number > 3 || number < -1) return function;
    const HMODULE system = GetModuleHandleA("opengl32.dll");
    return system ? reinterpret_cast<void*>(GetProcAddress(system, name)) : nullptr;
}

}  // namespace zellab::platform
