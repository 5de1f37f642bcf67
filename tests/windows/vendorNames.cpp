// A host that knows the library by the names that the system's usual compiler gives, and asks for them while it runs:
// that all of a list are there, and that five of them do what they are for. Then what 32 bits must refuse.
// Usage: vendorNames FOLDER, with zel_effects.dll, zel.dll and zel_effects.def
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "zel/zel.h"
#include "zel_effects/zel_records.h"

namespace {

using Byte = unsigned char;
constexpr int kWidth = 64, kHeight = 48;

int g_failures = 0;

void expect(bool is, const char* what) {
    if (is) return;
    std::printf("FAILED: %s\n", what);
    ++g_failures;
}

/// Half black, half white.
std::vector<Byte> edge() {
    std::vector<Byte> picture(std::size_t{4} * kWidth * kHeight, 255);
    for (std::size_t i = 0; i < picture.size(); ++i)
        if (i % 4 != 3 && i / 4 % kWidth < kWidth / 2) picture[i] = 0;
    return picture;
}

template <typename Function>
Function* find(HMODULE library, const char* in64, const char* in32) {
    const char* const name = sizeof(void*) == 8 ? in64 : in32;
    auto* const function =
        reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(library, name)));
    expect(function != nullptr, name);
    if (!function) std::exit(1);
    return function;
}

void findAll(HMODULE library, const std::filesystem::path& names) {
    std::ifstream list(names);
    int count = 0;
    for (std::string line; std::getline(list, line);) {
        const std::size_t begin = line.find('"'), end = line.rfind('"');
        if (begin == end) continue;
        const std::string name = line.substr(begin + 1, end - begin - 1);
        expect(GetProcAddress(library, name.c_str()) != nullptr, name.c_str());
        ++count;
    }
    expect(count > 20, "the list has names");
    std::printf("%d names asked for\n", count);
}

void callFive(HMODULE library) {
    const auto blur = find<void(Byte*, int, int, int)>(
        library, "?ImageProcessWithGaussBlur@TableBase@ZelImageCore@@SAXPEAEHHH@Z",
        "?ImageProcessWithGaussBlur@TableBase@ZelImageCore@@SAXPAEHHH@Z");
    std::vector<Byte> picture = edge();
    blur(picture.data(), kWidth, kHeight, 4);
    const std::size_t row = std::size_t{4} * (kWidth * (kHeight / 2));
    expect(picture[row + 4 * (kWidth / 2 - 1)] > 60 && picture[row + 4 * (kWidth / 2 - 1)] < 195,
           "the blur softens the edge");

    const auto mosaic = find<void(Byte*, int, int, int)>(
        library, "?ImageProcessWithMosaic@TableBase@ZelImageCore@@SAXPEAEHHH@Z",
        "?ImageProcessWithMosaic@TableBase@ZelImageCore@@SAXPAEHHH@Z");
    const std::vector<Byte> before = picture;
    mosaic(picture.data(), kWidth, kHeight, 16);
    expect(picture != before && picture[row] == picture[row + 4], "the mosaic makes blocks");

    const auto bright = find<bool(Byte*, int, int, int, int)>(
        library, "?ImageProcessWithBright@TableSkin@ZelImageCore@@SA_NPEAEHHHH@Z",
        "?ImageProcessWithBright@TableSkin@ZelImageCore@@SA_NPAEHHHH@Z");
    expect(bright(picture.data(), kWidth, kHeight, 8, 3), "brightening is done");
    expect(!bright(nullptr, kWidth, kHeight, 8, 3), "no picture is refused");

    // A small record by value.
    const auto zoom = find<bool(Byte*, int, int, zellab::Vector2f, float, int)>(
        library, "?zoomEye@CEyeZoomRender@@SA_NPEAEHHUVector2f@zellab@@MH@Z",
        "?zoomEye@CEyeZoomRender@@SA_NPAEHHUVector2f@zellab@@MH@Z");
    picture = edge();
    expect(zoom(picture.data(), kWidth, kHeight, {0.6f, 0.5f}, 0.3f, 80) && picture != edge(),
           "the zoom moves the edge");

    const auto slim = find<bool(Byte*, int, int, float, float, float, float, float, float)>(
        library, "?slimFace@CFaceSlimRender@@SA_NPEAEHHMMMMMM@Z",
        "?slimFace@CFaceSlimRender@@SA_NPAEHHMMMMMM@Z");
    picture = edge();
    expect(slim(picture.data(), kWidth, kHeight, 0.5f, 0.5f, 0.65f, 0.5f, 0.3f, 90) && picture != edge(),
           "the push moves the edge");
}

/// Pictures that no address space of this width holds get a status and a line, and nothing is read.
void refuseHuge(HMODULE library) {
    const auto create =
        find<decltype(zel_context_create)>(library, "zel_context_create", "zel_context_create");
    const auto apply = find<decltype(zel_apply)>(library, "zel_apply", "zel_apply");
    const auto draw = find<decltype(zel_draw_portrait)>(library, "zel_draw_portrait", "zel_draw_portrait");
    const auto message = find<decltype(zel_message)>(library, "zel_message", "zel_message");
    zel_context* context = nullptr;
    expect(create(nullptr, &context) == ZEL_OK, "a context is made");
    Byte small[4] = {};
    zel_pixels huge{small, 32767, 32767, 0, ZEL_RGBA8, 0};
    expect(apply(context, "mosaic", &huge, nullptr) == ZEL_BAD_ARGUMENT, "32767 by 32767 is refused");
    std::printf("32767 by 32767: %s\n", message());
    zel_portrait* portrait = nullptr;
    expect(draw(context, 32767, 32767, 1, nullptr, 0, &portrait) != ZEL_OK, "nor is such a portrait drawn");
    std::printf("a portrait of it: %s\n", message());
    // As many as the interface lets through: its copies and planes are beyond 32 bits.
    if (sizeof(void*) != 4) return;
    for (const char* effect : {"mosaic", "gauss-blur", "nature-smooth"}) {
        zel_pixels most{small, 16384, 16384, 0, ZEL_RGBA8, 0};
        // Memory for the picture itself, so that the rest is what is missing.
        void* const block =
            VirtualAlloc(nullptr, std::size_t{1} << 30, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
        if (!block) {
            std::printf("%s: the picture itself has no room\n", effect);
            continue;
        }
        most.data = block;
        expect(apply(context, effect, &most, nullptr) == ZEL_NO_MEMORY, "a gigabyte is too much");
        std::printf("%s: %s\n", effect, message());
        VirtualFree(block, 0, MEM_RELEASE);
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) return std::fprintf(stderr, "usage: vendorNames FOLDER\n"), 2;
    const std::filesystem::path folder = argv[1];
    const HMODULE effects = LoadLibraryW((folder / "zel_effects.dll").c_str());
    const HMODULE cInterface = LoadLibraryW((folder / "zel.dll").c_str());
    if (!effects || !cInterface) return std::printf("FAILED: a library cannot be loaded\n"), 1;
    findAll(effects, folder / "zel_effects.def");
    callFive(effects);
    refuseHuge(cInterface);
    std::printf(g_failures ? "%d failures\n" : "all is well\n", g_failures);
    return g_failures ? 1 : 0;
}
