// A peer of the whole render: the lens blur of GEGL's operation focus-blur, sharp in the middle of the picture. It
// has no depth map and takes one radius, 20 pixels, where the render's go up to 64.
#include <gegl.h>

#include "bokehBench.h"

namespace {

void focusBlur(benchmark::State& state) {
    constexpr int kLens = 1;  // of blur-type
    constexpr double kRadius = 20.0;
    gegl_init(nullptr, nullptr);
    g_object_set(gegl_config(), "threads", static_cast<int>(state.range(1)), nullptr);
    if (!gegl_has_operation("gegl:focus-blur")) return state.SkipWithError("this GEGL has no focus-blur");
    const zelbench::Size size = zelbench::sizeOf(state.range(0));
    const std::vector<unsigned char> pixels = zelbench::benchRgba(size);
    std::vector<unsigned char> out(pixels.size());
    const GeglRectangle whole{0, 0, size.width, size.height};
    const Babl* const format = babl_format("R'G'B'A u8");
    GeglBuffer* const source = gegl_buffer_new(&whole, format);
    gegl_buffer_set(source, &whole, 0, format, pixels.data(), GEGL_AUTO_ROWSTRIDE);
    for (auto _ : state) {
        GeglNode* const graph = gegl_node_new();
        GeglNode* const input =
            gegl_node_new_child(graph, "operation", "gegl:buffer-source", "buffer", source, nullptr);
        GeglNode* const blur = gegl_node_new_child(graph, "operation", "gegl:focus-blur", "blur-type", kLens,
                                                   "blur-radius", kRadius, nullptr);
        gegl_node_link(input, blur);
        gegl_node_blit(blur, 1.0, &whole, format, out.data(), GEGL_AUTO_ROWSTRIDE, GEGL_BLIT_DEFAULT);
        g_object_unref(graph);
    }
    g_object_unref(source);
    if (out == pixels) state.SkipWithError("nothing was blurred");
    zelbench::countPixels(state, size);
}
BENCHMARK(focusBlur)
    ->Name("bokeh_render/gegl_focus_blur")
    ->ArgNames({"MP", "threads"})
    ->ArgsProduct({{1, 12}, {1, 2}})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}  // namespace
